// The parser's converters between encodings.

#ifndef HOST_TRANSCODING_H_
#define HOST_TRANSCODING_H_

#include <cstddef>
#include <memory>
#include <string_view>
#include <xercesc/util/TransService.hpp>

namespace OrbScore {

// Units of UTF-16 that a converter handles in one go.
inline constexpr std::size_t kTranscodingBlock = 4096;

// A converter for the encoding. Throws QuException when the parser knows none of that name; a name
// that is no encoding name at all (blanks, control characters, hundreds of bytes) is unknown too.
// The parser must be running for as long as the converter lives.
std::unique_ptr<xercesc::XMLTranscoder> makeTranscoder(std::string_view encoding);

}  // namespace OrbScore

#endif  // HOST_TRANSCODING_H_
