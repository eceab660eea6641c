// Copies a file over another one, well or carelessly: what the tests of saves must tell apart.
//
//   carelessSaver HOW SOURCE TARGET
//
// HOW: "careful" replaces the file as a whole; "write", "sync" and "close" do so without asking
// whether that call worked; "unsynced" does without flushing to the disk; "leave" leaves its
// temporary file when one fails; "silent" tells no failure but by its status; "in-place" writes
// into the target.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

namespace {

constexpr int kFailed = 3;
constexpr std::size_t kBlock = 64;

int save(const std::string& how, const std::string& content, const std::string& target) {
  const bool inPlace = how == "in-place";
  const std::string name = inPlace ? target : target + ".tmp";
  const int file = ::open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (file < 0) return kFailed;
  bool isGood = true;
  for (std::size_t at = 0; isGood && at < content.size(); at += kBlock) {
    const std::size_t size = std::min(kBlock, content.size() - at);
    const bool written = ::write(file, content.data() + at, size) == static_cast<ssize_t>(size);
    isGood = written || how == "write";
  }
  if (isGood && how != "unsynced" && ::fsync(file) != 0) isGood = how == "sync";
  if (::close(file) != 0 && how != "close") isGood = false;
  if (inPlace) return isGood ? 0 : kFailed;
  if (isGood && ::rename(name.c_str(), target.c_str()) == 0) return 0;
  if (how != "leave") ::unlink(name.c_str());
  return kFailed;
}

}  // namespace

int main(int count, char** words) {
  if (count != 4) return 1;
  const std::string how = words[1];
  std::ifstream source(words[2], std::ios::binary);
  const std::string content{std::istreambuf_iterator<char>(source),
                            std::istreambuf_iterator<char>()};
  const int status = save(how, content, words[3]);
  if (status != 0 && how != "silent") std::fputs("cannot save\n", stderr);
  return status;
}
