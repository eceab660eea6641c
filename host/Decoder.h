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

  // Appends `bytes`, the whole text, to `out` as UTF-8. Returns the offset of the first byte that
  // is not of the encoding, up to which everything has been appended, or of the last byte when the
  // text ends within a character; bytes.size() when all is well. U+FFFD, which converters put in
  // the place of a wrong byte, counts as one.
  std::size_t append(std::string_view bytes, std::string& out);

 private:
  enum class Block {
    kGood,
    kStopped,  // before a byte that is not of the encoding
    kRefused,  // some byte is not of the encoding, and nothing is told of those before
  };

  // The units that `bytes` gives, of a block of them at most; `eaten` is how many bytes these took.
  Block decodeBlock(std::string_view bytes, std::u16string& units, std::size_t& eaten);
  // Whether the bytes so far end between two characters; nothing can be decoded behind.
  bool endsWhole();

  std::shared_ptr<const XercesSession> session_;  // outlives the converter
  std::unique_ptr<xercesc::XMLTranscoder> transcoder_;
};

}  // namespace OrbScore

#endif  // HOST_DECODER_H_
