// Takes over the standard error stream for a while, so that what readers print neither floods the
// terminal nor goes uncounted.

#ifndef FUZZ_PRINTEDLINES_H_
#define FUZZ_PRINTEDLINES_H_

#include <iostream>
#include <streambuf>

namespace orbseq::fuzz {

class PrintedLines : private std::streambuf {
 public:
  PrintedLines() : previous_(std::cerr.rdbuf(this)) {}
  ~PrintedLines() override { std::cerr.rdbuf(previous_); }
  PrintedLines(const PrintedLines&) = delete;
  PrintedLines& operator=(const PrintedLines&) = delete;

  int count() const noexcept { return count_; }

 private:
  int_type overflow(int_type c) override {
    if (c == '\n') ++count_;
    return traits_type::not_eof(c);
  }

  std::streambuf* previous_;
  int count_ = 0;
};

}  // namespace orbseq::fuzz

#endif  // FUZZ_PRINTEDLINES_H_
