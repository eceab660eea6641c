#ifndef TESTS_SUPPORT_STANDARDINPUT_H_
#define TESTS_SUPPORT_STANDARDINPUT_H_

#include <unistd.h>

#include <cstdio>
#include <stdexcept>
#include <string>

namespace orbseq::test {

// Standard input from a file, while it lives.
class StandardInput {
 public:
  explicit StandardInput(const std::string& path) : before_(::dup(STDIN_FILENO)) {
    std::rewind(stdin);
    std::clearerr(stdin);
    if (std::freopen(path.c_str(), "rb", stdin) == nullptr) throw std::runtime_error("no file");
  }
  ~StandardInput() {
    std::fflush(stdin);
    ::dup2(before_, STDIN_FILENO);
    ::close(before_);
    std::clearerr(stdin);
  }
  StandardInput(const StandardInput&) = delete;
  StandardInput& operator=(const StandardInput&) = delete;

 private:
  int before_;
};

}  // namespace orbseq::test

#endif  // TESTS_SUPPORT_STANDARDINPUT_H_
