// What the readers of the single forms share: where rows go, and what a bad one means.

#ifndef IO_LOGREADING_H_
#define IO_LOGREADING_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "io/IoError.h"
#include "io/LogBuilder.h"
#include "io/LogReader.h"

namespace orbseq {

class CsvReader;
struct JsonRecord;

constexpr const char* kNoInteger = " is no integer from 0 to 2147483647";
constexpr std::size_t kLogLineBytes = std::size_t{16} << 20U;  // most bytes of a line

class LogReading {
 public:
  // A place in the log: a row or line, and a column where there is one.
  struct Place {
    const std::string& file;
    std::size_t row = 0;
    std::size_t column = 0;
  };

  // The options must outlive the reading.
  explicit LogReading(const LogOptions& options) : options_(options), builder_(options.builder) {}

  const LogOptions& options() const noexcept { return options_; }
  LogBuilder& builder() noexcept { return builder_; }

  // A bad row: counted, or InputError when more are bad than may be.
  void refuse(const Place& place, const std::string& detail);

  // Does what adds something of that place to the builder. InputError when the builder is full.
  template <class Add>
  void add(const Place& place, Add add) const {
    try {
      add();
    } catch (const LogBuilder::Full& full) {
      throw InputError(place.file, place.row, place.column, full.what());
    }
  }

  // One more row was read; tells the progress now and then.
  void counted(std::uintmax_t bytes, std::optional<std::uintmax_t> size);

  // A customer's whole history as text. Sets without a time of their own have that of the set
  // before, or else the times 1, 2, 3 .. A bad one is refused as a row.
  void addHistory(const Place& place, std::string_view customer, std::string_view history);

  // Of the file of that name.
  TransactionLog finish(const std::string& file);

 private:
  const LogOptions& options_;
  LogBuilder builder_;
  std::size_t rows_ = 0;
  std::size_t badRows_ = 0;
};

// Adds a record's baskets for the customer that was begun. Requires that the items are accepted.
void addBaskets(const JsonRecord& record, LogBuilder& builder);

// The readers, a source file a family of forms.
void readRows(CsvReader rows, LogReading& reading);  // csv and tsv
void readSqlite(const std::string& path, LogReading& reading);
void readBaskets(const std::string& path, LogReading& reading);
void readJsonLines(const std::string& path, LogReading& reading);
ItemLabelMap readSpmf(const std::string& path, LogReading& reading);  // names that it gives items

}  // namespace orbseq

#endif  // IO_LOGREADING_H_
