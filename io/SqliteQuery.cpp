#include "io/SqliteQuery.h"

#include <sqlite3.h>

#include <fstream>
#include <new>
#include <vector>

#include "common/guards.h"
#include "common/utf8.h"
#include "host/EnvironmentError.h"
#include "io/IoError.h"
#include "io/TextSource.h"
#include "io/columnIndex.h"
#include "io/process.h"
#include "scoring/hostapi/QuErrorFormater.h"

namespace orbseq {

namespace {

constexpr int kStepsBetweenLooks = 100'000;  // of SQLite's machine; some milliseconds
constexpr int kBusyMilliseconds = 500;

bool isCompressed(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  char head[2] = {};
  return file.read(head, sizeof head) && head[0] == '\x1F' && head[1] == '\x8B';
}

struct CloseDatabase {
  void operator()(sqlite3* database) const noexcept { sqlite3_close(database); }
};
struct FinishStatement {
  void operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }
};

}  // namespace

class SqliteQuery::Connection {
 public:
  Connection(const std::string& path, const std::string& sql, std::size_t mostMemory)
      : mostMemory_(mostMemory) {
    TextSource source(path);
    name_ = source.name();
    if (path == "-" || isCompressed(path))
      openCopy(source);
    else
      open(path);
    sqlite3_busy_timeout(database_.get(), kBusyMilliseconds);
    sqlite3_limit(database_.get(), SQLITE_LIMIT_ATTACHED, 0);
    sqlite3_limit(database_.get(), SQLITE_LIMIT_LENGTH, kMostBytes);
    sqlite3_db_config(database_.get(), SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_progress_handler(
        database_.get(), kStepsBetweenLooks, [](void*) { return interrupted() ? 1 : 0; }, nullptr);
    prepare(sql);
  }

  const std::string& name() const noexcept { return name_; }
  const std::vector<std::string>& columns() const noexcept { return columns_; }

  bool next() {
    const int status = sqlite3_step(statement_.get());
    if (status != SQLITE_ROW && status != SQLITE_DONE && guarded("sqlite.step")) fail(status);
    return status == SQLITE_ROW;
  }

  std::string_view field(std::size_t index) const noexcept {
    const int column = static_cast<int>(index);
    const auto* const text =
        reinterpret_cast<const char*>(sqlite3_column_text(statement_.get(), column));
    if (text == nullptr) return {};
    return {text, static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column))};
  }

 private:
  void open(const std::string& path) {
    sqlite3* opened = nullptr;
    const int status = sqlite3_open_v2(path.c_str(), &opened, SQLITE_OPEN_READONLY, nullptr);
    database_.reset(opened);
    if (status != SQLITE_OK) fail(status);
  }

  // A database in memory, made from the bytes, which SQLite then owns.
  void openCopy(TextSource& source) {
    std::string bytes;
    for (auto block = source.next(); !block.empty(); block = source.next()) {
      if (bytes.size() + block.size() > mostMemory_ && guarded("sqlite.memory"))
        throw InputError(name_, 0,
                         "the database is larger than " + std::to_string(mostMemory_) +
                             " bytes, the limit for compressed files and standard input");
      bytes += block;
    }
    open(":memory:");
    auto* const copy = static_cast<unsigned char*>(sqlite3_malloc64(bytes.size() + 1));
    if (copy == nullptr) throw std::bad_alloc();
    bytes.copy(reinterpret_cast<char*>(copy), bytes.size());
    const auto size = static_cast<sqlite3_int64>(bytes.size());
    const int status =
        sqlite3_deserialize(database_.get(), "main", copy, size, size,
                            SQLITE_DESERIALIZE_FREEONCLOSE | SQLITE_DESERIALIZE_READONLY);
    if (status != SQLITE_OK) fail(status);
  }

  void prepare(const std::string& sql) {
    if (sql.empty() && guarded("sqlite.no query"))
      throw InputError(name_, 0, "a database wants a query");
    sqlite3_stmt* made = nullptr;
    const char* rest = nullptr;
    const int status =
        sqlite3_prepare_v2(database_.get(), sql.data(), static_cast<int>(sql.size()), &made, &rest);
    statement_.reset(made);
    if (status != SQLITE_OK && guarded("sqlite.query")) fail(status);
    const std::string_view behind(rest, static_cast<std::size_t>(sql.data() + sql.size() - rest));
    if ((made == nullptr || behind.find_first_not_of(" \t\r\n;") != std::string_view::npos) &&
        guarded("sqlite.statements"))
      throw InputError(name_, 0, "the query should be one statement");
    if ((sqlite3_stmt_readonly(made) == 0 || sqlite3_column_count(made) == 0) &&
        guarded("sqlite.writes"))
      throw InputError(name_, 0, "the query should answer rows and write nothing");
    for (int i = 0; i < sqlite3_column_count(made); ++i) {
      const char* const name = sqlite3_column_name(made, i);
      if (name == nullptr) throw std::bad_alloc();
      columns_.emplace_back(name);
    }
  }

  [[noreturn]] void fail(int status) const {
    const std::string text = database_ ? sqlite3_errmsg(database_.get()) : sqlite3_errstr(status);
    switch (status & 0xFF) {
      case SQLITE_NOMEM:
        throw std::bad_alloc();
      case SQLITE_ERROR:
      case SQLITE_CORRUPT:
      case SQLITE_NOTADB:
      case SQLITE_TOOBIG:
      case SQLITE_MISMATCH:
        throw InputError(name_, 0, text);
      default:
        throw OrbScore::EnvironmentError(name_ + ": " + text);
    }
  }

  std::size_t mostMemory_;
  std::string name_;
  std::unique_ptr<sqlite3, CloseDatabase> database_;
  std::unique_ptr<sqlite3_stmt, FinishStatement> statement_;
  std::vector<std::string> columns_;
};

SqliteQuery::SqliteQuery(const std::string& path, const std::string& sql, std::size_t mostMemory)
    : connection_(std::make_unique<Connection>(path, sql, mostMemory)) {}

SqliteQuery::~SqliteQuery() = default;
SqliteQuery::SqliteQuery(SqliteQuery&&) noexcept = default;
SqliteQuery& SqliteQuery::operator=(SqliteQuery&&) noexcept = default;

std::size_t SqliteQuery::columnOf(std::string_view name) const {
  return columnIndex(connection_->columns(), name, connection_->name(), 0);
}

bool SqliteQuery::next() {
  if (!connection_->next()) return false;
  ++row_;
  for (std::size_t i = 0; i < connection_->columns().size(); ++i) {
    const std::string_view text = field(i);
    if ((firstInvalidUtf8(text) != std::string_view::npos || text.find('\0') != text.npos) &&
        guarded("sqlite.text"))
      throw InputError(name(), row_, i + 1, "the text is no UTF-8, or holds a NUL");
  }
  return true;
}

std::string_view SqliteQuery::field(std::size_t index) const noexcept {
  return connection_->field(index);
}

const std::string& SqliteQuery::name() const noexcept { return connection_->name(); }

}  // namespace orbseq
