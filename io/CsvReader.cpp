#include "io/CsvReader.h"

#include <csv.h>

#include <algorithm>
#include <cassert>
#include <exception>
#include <new>

#include "common/guards.h"
#include "common/utf8.h"
#include "io/IoError.h"
#include "io/TextSource.h"
#include "io/columnIndex.h"

namespace orbseq {

// Drives libcsv one physical line at a time, so that the line of every row is known and at most
// one row comes out of each step.
class CsvReader::Parser {
 public:
  Parser(const std::string& path, const CsvLimits& limits, char delimiter);
  ~Parser() { csv_free(&csv_); }
  Parser(const Parser&) = delete;
  Parser& operator=(const Parser&) = delete;

  bool next();

  const TextSource& source() const noexcept { return source_; }
  std::size_t row() const noexcept { return row_; }
  std::size_t count() const noexcept { return ends_.size(); }
  std::string_view field(std::size_t index) const noexcept {
    assert(index < ends_.size());
    const std::size_t begin = index == 0 ? 0 : ends_[index - 1];
    return std::string_view(bytes_).substr(begin, ends_[index] - begin);
  }

 private:
  static void onField(void* bytes, std::size_t length, void* self) noexcept;
  static void onRow(int, void* self) noexcept { static_cast<Parser*>(self)->rowDone_ = true; }

  void feedLine();
  void feed(std::string_view piece);
  bool finish();
  void addField(std::string_view field);
  void checkSize(std::size_t pending) const;
  [[noreturn]] void fail(const std::string& detail) const;
  [[noreturn]] void failToParse() const;

  TextSource source_;
  CsvLimits limits_;
  csv_parser csv_{};
  std::string_view rest_;          // bytes of the source's block that are still to be fed
  std::string bytes_;              // the row's fields, one after the other
  std::vector<std::size_t> ends_;  // [fields] where each of them ends
  std::exception_ptr failure_;     // what went wrong inside a callback of libcsv
  std::size_t line_ = 1;           // the line that is being read
  std::size_t row_ = 1;            // the line on which the current row begins
  bool inRow_ = false;             // a row has begun and has not ended
  bool rowDone_ = false;           // libcsv has reported a row's end
  bool afterReturn_ = false;       // the last byte fed was a CR: an LF belongs to it
  bool ended_ = false;
};

CsvReader::Parser::Parser(const std::string& path, const CsvLimits& limits, char delimiter)
    : source_(path), limits_(limits) {
  if (csv_init(&csv_, CSV_STRICT | CSV_STRICT_FINI) != 0) throw std::bad_alloc();
  csv_set_delim(&csv_, static_cast<unsigned char>(delimiter));
  csv_set_space_func(&csv_, [](unsigned char) { return 0; });  // blanks belong to the field
  csv_set_blk_size(&csv_, 4096);
}

bool CsvReader::Parser::next() {
  bytes_.clear();
  ends_.clear();
  rowDone_ = false;
  while (!rowDone_) {
    if (ended_) return false;
    if (rest_.empty()) rest_ = source_.next();
    if (rest_.empty()) return finish();
    feedLine();
  }
  return true;
}

// Feeds what is there of the current line, with its end when the block holds it.
void CsvReader::Parser::feedLine() {
  const bool secondHalf = afterReturn_ && rest_.front() == '\n';
  afterReturn_ = false;
  const auto* const end =
      std::find_if(rest_.begin(), rest_.end(), [](char c) { return c == '\n' || c == '\r'; });
  const bool lineEnds = end != rest_.end();
  const auto content = static_cast<std::size_t>(end - rest_.begin());
  const std::string_view piece = rest_.substr(0, content + (lineEnds ? 1 : 0));
  rest_.remove_prefix(piece.size());

  if (!inRow_) row_ = line_;
  feed(piece);
  inRow_ = !rowDone_ && (inRow_ || content > 0);
  if (lineEnds && !secondHalf) ++line_;
  afterReturn_ = piece.back() == '\r';
}

void CsvReader::Parser::feed(std::string_view piece) {
  const std::size_t parsed =
      csv_parse(&csv_, piece.data(), piece.size(), &Parser::onField, &Parser::onRow, this);
  if (failure_) std::rethrow_exception(failure_);
  if (parsed != piece.size() && guarded("csv.syntax")) failToParse();
  checkSize(csv_.entry_pos);
}

bool CsvReader::Parser::finish() {
  ended_ = true;
  if (csv_fini(&csv_, &Parser::onField, &Parser::onRow, this) != 0) {
    if (csv_.status == CSV_EPARSE && guarded("csv.open quote"))
      fail("the quote that opens this field is never closed");
    failToParse();
  }
  if (failure_) std::rethrow_exception(failure_);
  return rowDone_;
}

// libcsv is C: nothing may be thrown through it.
void CsvReader::Parser::onField(void* bytes, std::size_t length, void* self) noexcept {
  auto& parser = *static_cast<Parser*>(self);
  if (parser.failure_) return;
  try {
    parser.addField(length == 0 ? std::string_view()
                                : std::string_view(static_cast<const char*>(bytes), length));
  } catch (...) {
    parser.failure_ = std::current_exception();
  }
}

void CsvReader::Parser::addField(std::string_view field) {
  if (ends_.size() == limits_.fields && guarded("csv.fields"))
    throw InputError(
        source_.name(), row_,
        "the row has more than " + std::to_string(limits_.fields) + " fields, the limit");
  checkSize(field.size());
  if (const std::size_t nul = field.find('\0'); nul != std::string_view::npos && guarded("csv.NUL"))
    fail("byte " + std::to_string(nul + 1) + " of the field is NUL");
  if (const std::size_t bad = firstInvalidUtf8(field);
      bad != std::string_view::npos && guarded("csv.UTF-8"))
    fail("byte " + std::to_string(bad + 1) + " of the field is not valid UTF-8");
  bytes_.append(field);
  ends_.push_back(bytes_.size());
}

// `pending`: bytes of the field that comes next.
void CsvReader::Parser::checkSize(std::size_t pending) const {
  if (pending > limits_.fieldBytes && guarded("csv.field bytes"))
    fail("the field is longer than " + std::to_string(limits_.fieldBytes) + " bytes, the limit");
  if (bytes_.size() + pending > limits_.rowBytes && guarded("csv.row bytes"))
    fail("the row is longer than " + std::to_string(limits_.rowBytes) + " bytes, the limit");
}

void CsvReader::Parser::fail(const std::string& detail) const {
  throw InputError(source_.name(), row_, ends_.size() + 1, detail);
}

void CsvReader::Parser::failToParse() const {
  if (csv_.status != CSV_EPARSE) throw std::bad_alloc();
  fail(csv_.quoted != 0 ? "text after the closing quote"
                        : "a quote inside a field that does not begin with one");
}

CsvReader::CsvReader(const std::string& path, const CsvLimits& limits, char delimiter)
    : parser_(std::make_unique<Parser>(path, limits, delimiter)) {
  if (!parser_->next() && guarded("csv.empty"))
    throw InputError(name(), 0, "the file is empty; a header row is wanted");
  for (std::size_t i = 0; i < parser_->count(); ++i) columns_.emplace_back(parser_->field(i));
}

CsvReader::~CsvReader() = default;
CsvReader::CsvReader(CsvReader&&) noexcept = default;
CsvReader& CsvReader::operator=(CsvReader&&) noexcept = default;

const std::vector<std::string>& CsvReader::columns() const noexcept { return columns_; }

std::size_t CsvReader::columnOf(std::string_view name) const {
  return columnIndex(columns_, name, this->name(), parser_->row());
}

bool CsvReader::next() {
  if (!parser_->next()) return false;
  if (parser_->count() != columns_.size() && guarded("csv.row length"))
    throw InputError(name(), row(),
                     "expected " + std::to_string(columns_.size()) + " fields, found " +
                         std::to_string(parser_->count()));
  return true;
}

std::string_view CsvReader::field(std::size_t index) const noexcept {
  return parser_->field(index);
}
std::size_t CsvReader::row() const noexcept { return parser_->row(); }
const std::string& CsvReader::name() const noexcept { return parser_->source().name(); }
std::uintmax_t CsvReader::bytesRead() const noexcept { return parser_->source().bytesRead(); }
std::optional<std::uintmax_t> CsvReader::size() const noexcept { return parser_->source().size(); }

}  // namespace orbseq
