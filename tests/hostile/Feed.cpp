#include "tests/hostile/Feed.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>
#include <utility>

namespace orbseq::test {

Feed::Feed(std::string path, std::string head, std::string piece, std::size_t times)
    : path_(std::move(path)), head_(std::move(head)), piece_(std::move(piece)), times_(times) {
  if (::mkfifo(path_.c_str(), 0600) != 0) throw std::runtime_error("cannot make a FIFO");
  ::signal(SIGPIPE, SIG_IGN);
  thread_ = std::thread([this] { feed(); });
}

Feed::~Feed() {
  isOver_ = true;
  if (thread_.joinable()) thread_.join();
}

std::size_t Feed::fed() {
  isOver_ = true;
  thread_.join();
  return bytes_;
}

void Feed::feed() {
  int fifo = -1;
  while ((fifo = ::open(path_.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC)) < 0 && !isOver_)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  if (fifo < 0) return;
  ::fcntl(fifo, F_SETFL, 0);  // writes wait from now on
  bool goesOn = give(fifo, head_);
  for (std::size_t i = 0; i < times_ && goesOn; ++i) goesOn = give(fifo, piece_);
  ::close(fifo);
}

bool Feed::give(int fifo, const std::string& bytes) {
  for (std::size_t given = 0; given < bytes.size();) {
    const ssize_t count = ::write(fifo, bytes.data() + given, bytes.size() - given);
    if (count < 0) return false;  // the reader has gone
    given += static_cast<std::size_t>(count);
    bytes_ += static_cast<std::size_t>(count);
  }
  return true;
}

}  // namespace orbseq::test
