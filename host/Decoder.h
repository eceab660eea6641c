// Converts bytes of an encoding that the parser knows into UTF-8.
//
// Threads: one thread at a time.

#ifndef HOST_DECODER_H_
#define HOST_DECODER_H_

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "host/XercesSession.h"
#include "host/transcoding.h"

namespace OrbScore {

class Decoder {
 public:
  // Throws QuException when the parser knows no such encoding.
  explicit Decoder(std::string_view encoding);

  // Whether printable ASCII, tab and line ends mean themselves, and no byte switches to another
  // set of characters. Leaves the converter in any state: for text, make another one.
  bool containsAscii();

  // Appends `bytes` to `out` as UTF-8. Returns the offset of the first byte that is not of the
  // encoding, up to which everything has been appended; bytes.size() when there is none.
  std::size_t append(std::string_view bytes, std::string& out);

 private:
  // The units that `bytes` gives, at most a block of them; `eaten` is how many bytes these took.
  // False when the first byte that is not taken is not of the encoding.
  bool decodeBlock(std::string_view bytes, std::u16string& units, std::size_t& eaten);

  std::shared_ptr<const XercesSession> session_;  // outlives the converter
  std::unique_ptr<xercesc::XMLTranscoder> transcoder_;
};

}  // namespace OrbScore

#endif  // HOST_DECODER_H_
