// How a fuzz target tells that something is wrong: a line on standard error, and the end of the
// program, by which the fuzzer keeps the input.

#ifndef FUZZ_CHECK_H_
#define FUZZ_CHECK_H_

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

// One input. The fuzzer, or fuzz/replay.cpp, calls it any number of times.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace orbseq::fuzz {

// Whether this build's targets have a fault of their own, which their seeds must show: a target
// that passes all the same would find nothing in the code under test either.
#ifdef ORBSEQ_FUZZ_PLANTED
inline constexpr bool kPlanted = true;
#else
inline constexpr bool kPlanted = false;
#endif

[[noreturn]] inline void fail(const std::string& what) {
  std::fprintf(stderr, "fuzz: %s\n", what.c_str());
  std::abort();
}

inline void require(bool holds, const char* what) {
  if (!holds) fail(what);
}

// What an error tells: one line, which begins with the place, or the name, that it must tell.
inline void requireErrorText(std::string_view text, std::string_view beginning) {
  if (!text.starts_with(beginning) || text.size() == beginning.size())
    fail("the error names no place: " + std::string(text));
  if (text.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos)
    fail("the error is not one line: " + std::string(text));
}

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
  return size == 0 ? std::string_view()
                   : std::string_view(reinterpret_cast<const char*>(data), size);
}

}  // namespace orbseq::fuzz

#endif  // FUZZ_CHECK_H_
