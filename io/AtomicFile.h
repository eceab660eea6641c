// A file that is replaced as a whole: whatever happens, its name leads to the old content or to
// the new one.
//
// Bytes go to a temporary file beside the target (".orbseq-PID-N.tmp"). commit() flushes it to the
// disk, renames it over the target and flushes the folder. Without commit() the destructor removes
// the temporary file, and the target stands as it was. A process that is killed leaves its
// temporary file: that is no obstacle to a later one, and anybody may remove it.
//
// - A symbolic link stays; the file that it leads to is replaced.
// - An existing file's permissions are kept, and its owner where the process may set it; a new
//   file gets what the process's mask leaves of rw-rw-rw-. A file that the process may not write
//   is not replaced. Other hard links to it keep the old content.
// - Deliberate: a target that is no regular file (/dev/full, a FIFO) is opened and written in
//   place, and never renamed over; there commit() only tells whether everything was written.
//
// Two writers of one target do not disturb each other: one of the two files stands.
//
// Threads: one at a time on one object. Errors: FileError, naming the target; also when a signal
// interrupts a write that waits. After an error the object can only be destroyed.

#ifndef IO_ATOMICFILE_H_
#define IO_ATOMICFILE_H_

#include <filesystem>
#include <string>
#include <string_view>

namespace orbseq {

class AtomicFile {
 public:
  // Makes the temporary file. Throws FileError when the target is a folder, may not be written, or
  // its folder takes no file.
  explicit AtomicFile(const std::string& path);
  ~AtomicFile();
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;

  // Appends the bytes; they are buffered.
  void write(std::string_view bytes);

  // Brings the content to the disk, so that commit() has only a name to change: of several files
  // each is prepared before the first is committed. Nothing is written afterwards.
  void prepare();

  // Makes the content the target's. At most once, and nothing is written afterwards.
  void commit();

 private:
  void openInPlace();
  void openTemporary();
  void keepModeOf(const std::filesystem::path& existing);
  void flush();
  void syncFolder() const;
  [[noreturn]] void fail(const char* action) const;  // with the current errno
  [[noreturn]] void fail(const char* action, int error) const;

  std::string name_;                 // the path as given, for messages
  std::filesystem::path target_;     // where symbolic links lead to
  std::filesystem::path temporary_;  // empty: written in place, or already renamed
  int descriptor_ = -1;
  std::string buffer_;
};

}  // namespace orbseq

#endif  // IO_ATOMICFILE_H_
