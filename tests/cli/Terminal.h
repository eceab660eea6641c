// A pseudo-terminal: what a program sees as a screen, and what it wrote there.

#ifndef TESTS_CLI_TERMINAL_H_
#define TESTS_CLI_TERMINAL_H_

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

namespace orbseq::test {

class Terminal {
 public:
  Terminal() : master_(::posix_openpt(O_RDWR | O_NOCTTY)) {
    if (master_ < 0 || ::grantpt(master_) != 0 || ::unlockpt(master_) != 0)
      throw std::runtime_error("no pseudo-terminal");
    path_ = ::ptsname(master_);
    slave_ = ::open(path_.c_str(), O_RDWR | O_NOCTTY);
  }
  ~Terminal() {
    ::close(slave_);
    ::close(master_);
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  // To be opened as a standard stream.
  const std::string& path() const noexcept { return path_; }

  // What was written so far, at most 4,000 bytes; line ends are CR and LF.
  std::string shown() const {
    ::fcntl(master_, F_SETFL, O_NONBLOCK);
    std::string text(4000, '\0');
    const ssize_t count = ::read(master_, text.data(), text.size());
    text.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
    return text;
  }

 private:
  int master_;
  int slave_ = -1;  // kept open, so that what the program wrote stays readable after its end
  std::string path_;
};

}  // namespace orbseq::test

#endif  // TESTS_CLI_TERMINAL_H_
