// Reads the fields of a binary form, each checked before it is handed out.
//
// Integers have 32 bits, doubles 64, both little-endian. Nothing is taken ahead of its turn: after
// a field the stream stands behind it.
//
// Errors. Whatever cannot be read or is out of range is refused: the promised message of the object
// that is being read is printed, once, and an IOException is thrown by pointer whose text names the
// place: "offset 0x1A4, level 3, entry 17, item count: 33 is outside 0..32". Offsets count from
// where this reader began.
//
// Threads: one at a time on one stream.

#ifndef SEQUENCE_BINARYREADER_H_
#define SEQUENCE_BINARYREADER_H_

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <limits>
#include <string>
#include <string_view>

#include "common/messages.h"

namespace SEQUENCE_NAMESPACE_800 {

class BinaryReader {
 public:
  explicit BinaryReader(std::istream& in) noexcept : in_(in) {}

  // The object that is being read, from here to the end of the scope.
  class Object {
   public:
    Object(BinaryReader& reader, orbseq::Message message) noexcept
        : reader_(reader), outer_(reader.message_) {
      reader.message_ = message;
    }
    ~Object() { reader_.message_ = outer_; }
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

   private:
    BinaryReader& reader_;
    orbseq::Message outer_;
  };

  // The place for messages. Level and entry count from 0; -1: none.
  void setLevel(std::int32_t level) noexcept { level_ = level; }
  void setEntry(std::int32_t entry) noexcept { entry_ = entry; }

  void marker(std::string_view expected);  // refuses other bytes
  char byte(const char* field);
  std::int32_t integer(const char* field,
                       std::int32_t lowest = std::numeric_limits<std::int32_t>::min(),
                       std::int32_t highest = std::numeric_limits<std::int32_t>::max());
  double real(const char* field);

  std::uint64_t offset() const noexcept { return offset_; }  // bytes read so far

  // `field` is the one that was read last, or the one that begins at an offset.
  [[noreturn]] void refuse(const char* field, const std::string& detail) const {
    refuseAt(fieldBegin_, field, detail);
  }
  [[noreturn]] void refuseAt(std::uint64_t begin, const char* field,
                             const std::string& detail) const;

 private:
  void bytes(const char* field, char* to, std::size_t count);

  std::istream& in_;
  orbseq::Message message_ = orbseq::Message::kReadingDictionary;
  std::uint64_t offset_ = 0;      // behind the latest field
  std::uint64_t fieldBegin_ = 0;  // of the latest field
  std::int32_t level_ = -1;
  std::int32_t entry_ = -1;
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQUENCE_BINARYREADER_H_
