// Bytes of binary forms, put together by hand, and what reading them comes to.

#ifndef TESTS_SUPPORT_BINARYIMAGE_H_
#define TESTS_SUPPORT_BINARYIMAGE_H_

#include <cstdint>
#include <cstring>
#include <fstream>
#include <initializer_list>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>

#include "sequence/SeqExceptions.h"
#include "tests/support/captureErrors.h"

namespace orbseq::test {

// 32-bit integers, little-endian.
inline std::string ints(std::initializer_list<std::int32_t> values) {
  std::string bytes;
  for (const std::int32_t value : values)
    for (int shift = 0; shift < 32; shift += 8)
      bytes += static_cast<char>(static_cast<std::uint32_t>(value) >> shift);
  return bytes;
}

inline std::string reals(std::initializer_list<double> values) {
  std::string bytes;
  for (const double value : values) {
    char raw[sizeof value];
    std::memcpy(raw, &value, sizeof value);
    bytes.append(raw, sizeof value);
  }
  return bytes;
}

// The block of a packed sequence: pattern, items, set count.
inline std::string sequenceBlock(std::int32_t pattern, std::initializer_list<std::int32_t> items,
                                 std::int32_t sets) {
  return std::string("NT:\0", 4) + ints({pattern, static_cast<std::int32_t>(items.size())}) +
         ints(items) + ints({sets});
}

// The block of a counter without statistics; `links` holds items and positions in turn.
inline std::string counterBlock(std::int32_t count,
                                std::initializer_list<std::int32_t> links = {}) {
  return std::string("SD\0", 3) + ints({count, 0, 0, static_cast<std::int32_t>(links.size() / 2)}) +
         ints(links) + ints({0});
}

inline std::string fileText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

// What a read did: the bytes or lines it told, what it printed, what it threw (by pointer).
struct ReadOutcome {
  std::uint64_t count = 0;
  std::string printed;
  std::string thrown;  // empty: nothing

  bool isRefused() const { return !thrown.empty(); }
};

// Reads with `read(stream)` from the bytes. An exception of another kind passes through.
template <class Read>
ReadOutcome outcomeOf(const std::string& bytes, Read read) {
  ReadOutcome outcome;
  std::istringstream stream(bytes);
  const CapturedErrors errors;
  try {
    outcome.count = read(stream);
  } catch (SEQUENCE_NAMESPACE_800::SeqExceptions::IOException* error) {
    outcome.thrown = error->what();
    delete error;
  }
  outcome.printed = errors.text();
  return outcome;
}

template <class Object>
ReadOutcome readInto(Object& object, const std::string& bytes) {
  return outcomeOf(bytes, [&object](std::istream& is) { return object.readObject(is); });
}

template <class Object>
ReadOutcome readXmlInto(Object& object, const std::string& text) {
  return outcomeOf(text, [&object](std::istream& is) { return object.readObjectXML(is); });
}

template <class Object>
std::string binaryOf(const Object& object) {
  std::ostringstream stream;
  object.writeObject(stream);
  return stream.str();
}

template <class Object>
std::string xmlOf(const Object& object) {
  std::ostringstream stream;
  object.writeObjectXML(stream);
  return stream.str();
}

}  // namespace orbseq::test

#endif  // TESTS_SUPPORT_BINARYIMAGE_H_
