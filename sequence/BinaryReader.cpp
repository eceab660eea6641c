#include "sequence/BinaryReader.h"

#include <array>
#include <bit>
#include <cstring>
#include <istream>

#include "common/guards.h"
#include "sequence/SeqExceptions.h"
#include "sequence/errorText.h"

namespace SEQUENCE_NAMESPACE_800 {

using orbseq::guarded;

namespace {

// Each byte as " 53".
std::string hexadecimal(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    text += {' ', kDigits[byte >> 4U], kDigits[byte & 0xFU]};
  }
  return text;
}

}  // namespace

static_assert(std::endian::native == std::endian::little, "the stored order is the machine's");

void BinaryReader::bytes(const char* field, char* to, std::size_t count) {
  fieldBegin_ = offset_;
  in_.read(to, static_cast<std::streamsize>(count));
  const auto got = static_cast<std::size_t>(in_.gcount());
  offset_ += got;
  if (!in_ && guarded("binary.end")) refuse(field, "the stream ends here, or cannot be read");
}

void BinaryReader::marker(std::string_view expected) {
  std::array<char, 4> found{};
  bytes("marker", found.data(), expected.size());
  if (std::string_view(found.data(), expected.size()) != expected &&
      guarded("binary.marker ", expected.data(), expected.ends_with('\0') ? " and NUL" : ""))
    refuse("marker", "is not \"" + std::string(expected.data()) + "\" but" +
                         hexadecimal({found.data(), expected.size()}));
}

char BinaryReader::byte(const char* field) {
  char value = 0;
  bytes(field, &value, sizeof value);
  return value;
}

std::int32_t BinaryReader::integer(const char* field, std::int32_t lowest, std::int32_t highest) {
  std::int32_t value = 0;
  std::array<char, sizeof value> raw;
  bytes(field, raw.data(), raw.size());
  std::memcpy(&value, raw.data(), raw.size());
  if ((value < lowest || value > highest) && guarded("binary.range ", field))
    refuse(field, std::to_string(value) + " is outside " + std::to_string(lowest) + ".." +
                      std::to_string(highest));
  return value;
}

double BinaryReader::real(const char* field) {
  double value = 0.0;
  std::array<char, sizeof value> raw;
  bytes(field, raw.data(), raw.size());
  std::memcpy(&value, raw.data(), raw.size());
  return value;
}

void BinaryReader::refuseAt(std::uint64_t begin, const char* field,
                            const std::string& detail) const {
  orbseq::print(message_, in_);
  std::string place = orbseq::offsetText(begin);
  if (level_ >= 0) place += ", level " + std::to_string(level_);
  if (entry_ >= 0) place += ", entry " + std::to_string(entry_);
  throw new SeqExceptions::IOException(place + ", " + field + ": " + detail);
}

}  // namespace SEQUENCE_NAMESPACE_800
