// Takes over the standard output stream for a while.
//
// While it lives, what is written to std::cout is collected here, and the stream starts from the
// default format (precision 6, no notation set). The end restores buffer and format, so that a
// display that leaves flags behind changes no other test.

#ifndef TESTS_SUPPORT_CAPTUREOUTPUT_H_
#define TESTS_SUPPORT_CAPTUREOUTPUT_H_

#include <ios>
#include <iostream>
#include <sstream>
#include <streambuf>
#include <string>

namespace orbseq::test {

class CapturedOutput {
 public:
  CapturedOutput() : previousBuffer_(std::cout.rdbuf(text_.rdbuf())), previousFormat_(nullptr) {
    previousFormat_.copyfmt(std::cout);
    std::cout.copyfmt(std::ios(nullptr));
  }
  ~CapturedOutput() {
    std::cout.rdbuf(previousBuffer_);
    std::cout.copyfmt(previousFormat_);
  }
  CapturedOutput(const CapturedOutput&) = delete;
  CapturedOutput& operator=(const CapturedOutput&) = delete;

  std::string text() const { return text_.str(); }
  // The format that the stream has now.
  bool isFixed() const { return (std::cout.flags() & std::ios::floatfield) == std::ios::fixed; }
  std::streamsize precision() const { return std::cout.precision(); }

 private:
  std::ostringstream text_;
  std::streambuf* previousBuffer_;
  std::ios previousFormat_;
};

}  // namespace orbseq::test

#endif  // TESTS_SUPPORT_CAPTUREOUTPUT_H_
