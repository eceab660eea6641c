// The two ways in which reading and writing customers' data goes wrong.
//
// Both carry one line of text for people, beginning with the file's name; standard input and
// output are called so. The text names the place, the value and the allowed range. A file name
// stands as the caller gave it; a caller that prints the line escapes what is not printable.

#ifndef IO_IOERROR_H_
#define IO_IOERROR_H_

#include <cstddef>
#include <stdexcept>
#include <string>
#include <system_error>

namespace orbseq {

// The data are bad: "FILE:ROW:COLUMN: detail", "FILE:ROW: detail" or "FILE: detail". Rows and
// columns count from 1; row 0 and column 0 mean "no such place" and are left out.
class InputError : public std::runtime_error {
 public:
  InputError(const std::string& file, std::size_t row, std::size_t column,
             const std::string& detail)
      : std::runtime_error(file + place(row) + place(column) + ": " + detail) {}
  InputError(const std::string& file, std::size_t row, const std::string& detail)
      : InputError(file, row, 0, detail) {}

 private:
  static std::string place(std::size_t number) {
    return number == 0 ? std::string() : ":" + std::to_string(number);
  }
};

// The environment failed: "FILE: cannot open: No such file or directory". `action` is what was
// tried, `error` the errno value that it left.
class FileError : public std::runtime_error {
 public:
  FileError(const std::string& file, const std::string& action, int error)
      : std::runtime_error(file + ": cannot " + action + ": " +
                           std::generic_category().message(error)) {}
};

}  // namespace orbseq

#endif  // IO_IOERROR_H_
