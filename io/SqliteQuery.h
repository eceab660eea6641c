// The rows that a query of an SQLite database answers, one at a time.
//
// The database is opened to be read alone, and the query must be one statement that reads. A file
// compressed with gzip, and standard input ("-"), are held in memory, at most mostMemory bytes.
// Numbers come as text; a NULL and an empty text are the same. Texts must be UTF-8 without NUL.
//
// Threads: one at a time on one query.
// Errors: InputError for what is no database, a query that cannot be run or would write, columns
//         that are missing; FileError and OrbScore::EnvironmentError when the file cannot be read.
//         A request to stop (io/process.h) ends a query that runs, as an error.

#ifndef IO_SQLITEQUERY_H_
#define IO_SQLITEQUERY_H_

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "common/Limits.h"

namespace orbseq {

class SqliteQuery {
 public:
  static constexpr std::size_t kMostMemory = LogLimits::kDatabaseInMemory;
  static constexpr int kMostBytes = LogLimits::kDatabaseBytes;  // of a text, and of a row

  // Requires mostMemory <= kMostMemory.
  SqliteQuery(const std::string& path, const std::string& sql,
              std::size_t mostMemory = kMostMemory);
  ~SqliteQuery();
  SqliteQuery(SqliteQuery&&) noexcept;
  SqliteQuery& operator=(SqliteQuery&&) noexcept;

  // As of io/CsvReader.h.
  std::size_t columnOf(std::string_view name) const;
  bool next();
  std::string_view field(std::size_t index) const noexcept;  // valid until next()
  std::size_t row() const noexcept { return row_; }          // of the answer, from 1
  const std::string& name() const noexcept;

 private:
  class Connection;

  std::unique_ptr<Connection> connection_;
  std::size_t row_ = 0;
};

}  // namespace orbseq

#endif  // IO_SQLITEQUERY_H_
