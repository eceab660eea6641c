// Texts compressed with gzip. The program must be linked with zlib.

#ifndef TESTS_SUPPORT_GZIP_H_
#define TESTS_SUPPORT_GZIP_H_

#include <zlib.h>

#include <stdexcept>
#include <string>
#include <string_view>

namespace orbseq::test {

// One gzip member.
inline std::string compressed(std::string_view plain) {
  z_stream stream{};
  constexpr int kGzip = 16 + MAX_WBITS;
  if (deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, kGzip, 8, Z_DEFAULT_STRATEGY) != Z_OK)
    throw std::runtime_error("no memory to compress");
  std::string bytes(deflateBound(&stream, static_cast<uLong>(plain.size())), '\0');
  stream.next_in = const_cast<Bytef*>(reinterpret_cast<const Bytef*>(plain.data()));
  stream.avail_in = static_cast<uInt>(plain.size());
  stream.next_out = reinterpret_cast<Bytef*>(bytes.data());
  stream.avail_out = static_cast<uInt>(bytes.size());
  const int status = deflate(&stream, Z_FINISH);
  bytes.resize(bytes.size() - stream.avail_out);
  deflateEnd(&stream);
  if (status != Z_STREAM_END) throw std::runtime_error("cannot compress");
  return bytes;
}

}  // namespace orbseq::test

#endif  // TESTS_SUPPORT_GZIP_H_
