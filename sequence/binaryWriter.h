// Writes the fields of a binary form: 32-bit integers and 64-bit doubles, little-endian, and raw
// markers. The stream is not checked.

#ifndef SEQUENCE_BINARYWRITER_H_
#define SEQUENCE_BINARYWRITER_H_

#include <cstdint>
#include <ostream>
#include <string_view>

namespace SEQUENCE_NAMESPACE_800 {

inline void writeMarker(std::ostream& os, std::string_view marker) {
  os.write(marker.data(), static_cast<std::streamsize>(marker.size()));
}

inline void writeInteger(std::ostream& os, std::int32_t value) {
  os.write(reinterpret_cast<const char*>(&value), sizeof value);
}

inline void writeReal(std::ostream& os, double value) {
  os.write(reinterpret_cast<const char*>(&value), sizeof value);
}

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQUENCE_BINARYWRITER_H_
