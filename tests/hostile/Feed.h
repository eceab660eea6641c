// Feeds a reader what is too large for a file.

#ifndef TESTS_HOSTILE_FEED_H_
#define TESTS_HOSTILE_FEED_H_

#include <atomic>
#include <cstddef>
#include <string>
#include <thread>

namespace orbseq::test {

// A FIFO that gives `head`, and then `piece` so many times, to the first who reads it.
class Feed {
 public:
  Feed(std::string path, std::string head, std::string piece, std::size_t times);
  // Ends also when nobody has come to read.
  ~Feed();
  Feed(const Feed&) = delete;
  Feed& operator=(const Feed&) = delete;

  const std::string& path() const noexcept { return path_; }
  // Waits for the reader's end, or the feed's; the bytes that went into the FIFO.
  std::size_t fed();

 private:
  void feed();
  bool give(int fifo, const std::string& bytes);

  const std::string path_;
  const std::string head_;
  const std::string piece_;
  const std::size_t times_;
  std::atomic<bool> isOver_ = false;
  std::size_t bytes_ = 0;  // of the thread, until it is joined
  std::thread thread_;
};

}  // namespace orbseq::test

#endif  // TESTS_HOSTILE_FEED_H_
