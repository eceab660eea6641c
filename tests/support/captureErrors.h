// Takes over the standard error stream for a while: what is written to std::cerr is collected here.

#ifndef TESTS_SUPPORT_CAPTUREERRORS_H_
#define TESTS_SUPPORT_CAPTUREERRORS_H_

#include <iostream>
#include <sstream>
#include <streambuf>
#include <string>

namespace orbseq::test {

class CapturedErrors {
 public:
  CapturedErrors() : previous_(std::cerr.rdbuf(text_.rdbuf())) {}
  ~CapturedErrors() { std::cerr.rdbuf(previous_); }
  CapturedErrors(const CapturedErrors&) = delete;
  CapturedErrors& operator=(const CapturedErrors&) = delete;

  std::string text() const { return text_.str(); }

 private:
  std::ostringstream text_;
  std::streambuf* previous_;
};

}  // namespace orbseq::test

#endif  // TESTS_SUPPORT_CAPTUREERRORS_H_
