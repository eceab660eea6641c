// Which of several questions an execution asks. To ask all of them of every input would leave time
// for few inputs; so an input's bytes choose, and the same bytes choose the same again. The replay
// of kept inputs asks everything, and so finds whatever one choice has found.

#ifndef FUZZ_CHOICE_H_
#define FUZZ_CHOICE_H_

#include <cstddef>
#include <cstdint>

namespace orbseq::fuzz {

#ifdef ORBSEQ_FUZZ_ALL
inline constexpr bool kAskAll = true;
#else
inline constexpr bool kAskAll = false;
#endif

// One of a few, numbered from 0, or all of them.
class Pick {
 public:
  explicit Pick(std::uint64_t number) noexcept : number_(number) {}

  bool is(std::uint64_t number) const noexcept { return kAskAll || number_ == number; }

 private:
  std::uint64_t number_;
};

// Drawn from a checksum of the whole input, so that it takes no bytes from what the input says and
// a change anywhere may choose anew. Value type: copies go on alike.
class Choice {
 public:
  Choice(const std::uint8_t* data, std::size_t size) noexcept {
    for (std::size_t k = 0; k < size; ++k) rest_ = (rest_ ^ data[k]) * 0x100000001B3U;
    rest_ ^= rest_ >> 32U;
  }

  // Requires count > 0. Good for a dozen small counts.
  Pick among(std::uint64_t count) noexcept {
    const Pick pick(rest_ % count);
    rest_ /= count;
    return pick;
  }

 private:
  std::uint64_t rest_ = 0xCBF29CE484222325U;
};

}  // namespace orbseq::fuzz

#endif  // FUZZ_CHOICE_H_
