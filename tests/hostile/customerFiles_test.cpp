// Hostile customers' data: rows V16 to V18, where a log comes from: compressed files, files that
// change, devices, databases.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>

#include "host/EnvironmentError.h"
#include "io/LogReader.h"
#include "io/SqliteQuery.h"
#include "tests/hostile/Meter.h"
#include "tests/hostile/logs.h"
#include "tests/support/gzip.h"

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using OrbScore::EnvironmentError;
using orbseq::LogOptions;
using orbseq::SqliteQuery;
using orbseq::TransactionLog;
using orbseq::test::canRunAs;
using orbseq::test::compressed;
using orbseq::test::contentOf;
using orbseq::test::errorOf;
using orbseq::test::Feed;
using orbseq::test::kMegabyte;
using orbseq::test::kNobody;
using orbseq::test::kSmallMemory;
using orbseq::test::Meter;
using orbseq::test::Outcome;
using orbseq::test::Program;
using orbseq::test::TempFolder;
using orbseq::test::Training;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

const std::string kHead = "customer,time,item\n";

// A megabyte that comes to a gigabyte, which is as much as the form can do: of rows that are good,
// and of line ends. No more than the first block of it is looked at.
TEST(HostileFiles, V16AGzipBombStopsAtTheLimitOfTheRatio) {
  for (const std::string line : {"a,1,5\n", "\n"}) {
    std::string block;
    while (block.size() < 16 * kMegabyte) block += line;
    const std::string member = compressed(block);
    std::string bomb = compressed(kHead);
    while (bomb.size() < kMegabyte) bomb += member;

    Training().expectRefused("log.csv.gz", bomb,
                             ": the gzip data expand to more than 100 times their size, the limit");
  }
}

TEST(HostileFiles, V16AGzipBombInAPipeStopsAsWell) {
  const Training training;
  Feed feed(training.folder().path("log.csv"), compressed(kHead),
            compressed(std::string(16 * kMegabyte, '\n')), 1000);

  const Outcome outcome = training.train(feed.path(), {}, {.dataBytes = kSmallMemory});

  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, HasSubstr("100 times"));
  EXPECT_LT(feed.fed(), kMegabyte);
  training.expectOldModel(1);
}

// A log of more rows than there are between two calls of the progress, which does `change` once.
TransactionLog readWhile(const std::string& path, const std::function<void()>& change) {
  LogOptions options;
  options.progress = [&, isDone = false](std::size_t, std::uintmax_t,
                                         std::optional<std::uintmax_t>) mutable {
    if (!isDone) change();
    isDone = true;
  };
  return orbseq::readLog(path, options);
}

std::string longLog() {
  std::string rows = kHead;
  for (int i = 0; i < 40'000; ++i) rows += "a," + std::to_string(i) + ",5\n";
  return rows;
}

void append(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::app) << bytes;
}

TEST(HostileFiles, V17AFileThatGrowsOrShrinksWhileItIsReadIsRefused) {
  const TempFolder folder;
  const std::string path = folder.file("log.csv", longLog());
  const std::string size = std::to_string(fs::file_size(path));

  const std::string grown =
      errorOf<EnvironmentError>([&] { readWhile(path, [&] { append(path, "b,1,5\nb"); }); });
  EXPECT_EQ(grown, path + ": the file changed while it was read: of " + size +
                       " bytes at the beginning, " + std::to_string(fs::file_size(path)) +
                       " at the end");
  // What is cut off on a line's end would be a log of fewer customers.
  folder.file("log.csv", longLog());
  const std::size_t half = longLog().find("\n", longLog().size() / 2) + 1;
  EXPECT_EQ(
      errorOf<EnvironmentError>([&] { readWhile(path, [&] { fs::resize_file(path, half); }); }),
      path + ": the file changed while it was read: of " + size + " bytes at the beginning, " +
          std::to_string(half) + " at the end");
}

// What the system tells of a file that a process has open; nothing when none has.
std::optional<fs::path> openFile(const std::string& path) {
  std::error_code ignored;
  for (const auto& process : fs::directory_iterator("/proc", ignored)) {
    std::error_code gone;  // a process, or somebody else's
    for (const auto& file : fs::directory_iterator(process.path() / "fd", gone))
      if (fs::read_symlink(file.path(), gone) == path)
        return process.path() / "fdinfo" / file.path().filename();
  }
  return std::nullopt;
}

// Bytes up to where the file was read; 0 when nobody reads it any more.
std::uintmax_t placeIn(const fs::path& openFile) {
  std::ifstream file(openFile);
  std::string name;
  std::uintmax_t place = 0;
  file >> name >> place;
  return place;
}

// Trains on the log and does `change` while it is read, somewhere between its first block and its
// end. Nothing when the program was too fast for that.
std::optional<Outcome> trainWhile(const Training& training, const std::string& log,
                                  const std::function<void()>& change) {
  const std::uintmax_t size = fs::file_size(log);
  Program program({"train", "--quiet", "--input", log, "--output", training.folder().path("m.xml"),
                   "--min-support", "1", "--max-items", "1"});
  std::optional<fs::path> file;
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!(file = openFile(log)) && std::chrono::steady_clock::now() < end)
    std::this_thread::sleep_for(std::chrono::microseconds(100));
  while (file && placeIn(*file) == 0 && std::chrono::steady_clock::now() < end)
    std::this_thread::sleep_for(std::chrono::microseconds(100));
  program.signal(SIGSTOP);
  change();
  const std::uintmax_t place = file ? placeIn(*file) : 0;
  program.signal(SIGCONT);
  const Outcome outcome = program.wait();
  if (place == 0 || place >= size) return std::nullopt;
  return outcome;
}

TEST(HostileFiles, V17AFileThatGrowsOrShrinksIsNoModel) {
  std::string rows = kHead;
  for (int i = 0; i < 2'000'000; ++i) rows += "a," + std::to_string(i) + ",5\n";
  const std::size_t half = rows.find('\n', rows.size() / 2) + 1;
  for (const bool grows : {true, false}) {
    constexpr int kTries = 10;
    std::optional<Outcome> outcome;
    for (int i = 0; i < kTries && !outcome; ++i) {
      const Training training;
      const std::string log = training.folder().file("log.csv", rows);
      outcome = trainWhile(training, log, [&] {
        if (grows)
          append(log, "b,1,5\n");
        else
          fs::resize_file(log, half);
      });
      if (!outcome) continue;
      EXPECT_EQ(outcome->status, 3) << outcome->error;
      EXPECT_THAT(outcome->error,
                  StartsWith("orbseq: " + log + ": the file changed while it was read: of " +
                             std::to_string(rows.size()) + " bytes at the beginning, "));
      EXPECT_EQ(std::count(outcome->error.begin(), outcome->error.end(), '\n'), 1);
      training.expectOldModel(1);
    }
    EXPECT_TRUE(outcome.has_value()) << "the log was never seen half read";
  }
}

TEST(HostileFiles, V17AFileThatVanishesWhileItIsReadIsReadToItsEnd) {
  const TempFolder folder;
  const std::string path = folder.file("log.csv", longLog());

  const TransactionLog log = readWhile(path, [&] { fs::remove(path); });

  EXPECT_FALSE(fs::exists(path));
  EXPECT_EQ(log.rows, 40'000U);
}

TEST(HostileFiles, V17WhatIsNoFileOrNotThereIsAnErrorOfTheEnvironment) {
  const Training training;
  const std::string directory = training.folder().path("log.csv");
  fs::create_directory(directory);

  const Outcome folder = training.train(directory);
  const Outcome missing = training.train(training.folder().path("none.csv"));

  EXPECT_EQ(folder.status, 3);
  EXPECT_EQ(folder.error, "orbseq: " + directory + ": cannot read: Is a directory\n");
  EXPECT_EQ(missing.status, 3);
  EXPECT_THAT(missing.error, EndsWith("none.csv: cannot open: No such file or directory\n"));
  training.expectOldModel(1);
}

TEST(HostileFiles, V17AFifoIsReadToItsEnd) {
  const Training training;
  Feed feed(training.folder().path("log.csv"), kHead, "a,1,5\n", 3);

  EXPECT_EQ(training.train(feed.path()).status, 0);

  EXPECT_EQ(training.sequences(), "5 -1 #SUP: 1\n");
}

TEST(HostileFiles, V17AnEndlessDeviceStopsAtALimit) {
  for (const char* format : {"csv", "tsv", "jsonl", "spmf", "basket"}) {
    const Training training;

    const Outcome outcome =
        training.train("/dev/zero", {"--input-format", format}, {.dataBytes = 2 * kSmallMemory});

    EXPECT_EQ(outcome.status, 2) << format;
    EXPECT_THAT(outcome.error, HasSubstr("orbseq: /dev/zero:1")) << format;
    EXPECT_THAT(outcome.error, EndsWith(" bytes, the limit\n")) << format;
    training.expectOldModel(0);
  }
}

TEST(HostileFiles, V17AFileThatMayNotBeReadIsAnErrorOfTheEnvironment) {
  if (!canRunAs(kNobody)) GTEST_SKIP() << "the program cannot be run with another user's rights";
  const Training training;
  const std::string log = training.folder().file("log.csv", kHead + "a,1,5\n");
  fs::permissions(training.folder().path(), fs::perms::all);
  fs::permissions(log, fs::perms::none);

  const Outcome outcome = training.train(log, {}, {.user = kNobody});

  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.error, "orbseq: " + log + ": cannot open: Permission denied\n");
  training.expectOldModel(1);
}

class HostileDatabase : public testing::Test {
 protected:
  using Database = std::unique_ptr<sqlite3, int (*)(sqlite3*)>;

  // Runs the statements on the database of that name, which stays open.
  Database with(const std::string& statements) const {
    sqlite3* opened = nullptr;
    EXPECT_EQ(sqlite3_open(path_.c_str(), &opened), SQLITE_OK);
    Database owned(opened, sqlite3_close);
    EXPECT_EQ(sqlite3_exec(opened, statements.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(opened);
    return owned;
  }
  void make(const std::string& rows) const {
    with("CREATE TABLE sales(customer TEXT, time REAL, item); INSERT INTO sales VALUES " + rows);
  }
  Outcome train(const std::string& query = "SELECT * FROM sales") const {
    return training_.train(path_, {"--query", query});
  }
  void expect(const Outcome& outcome, int status, const std::string& message) const {
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.error, "orbseq: " + path_ + message + "\n");
    EXPECT_EQ(training_.model(), "old");
  }

  const Training training_;
  const std::string path_ = training_.folder().path("shop.db");
};

TEST_F(HostileDatabase, V18OneThatIsMissingIsAnErrorOfTheEnvironment) {
  expect(train(), 3, ": cannot open: No such file or directory");
  training_.expectOldModel(0);
}

TEST_F(HostileDatabase, V18WhatIsNoDatabaseIsBadInput) {
  training_.folder().file("shop.db", kHead + std::string(4096, 'x'));

  expect(train(), 2, ": file is not a database");
}

// Within the second that every refusal may take.
TEST_F(HostileDatabase, V18OneThatIsLockedIsAnErrorOfTheEnvironment) {
  make("('a', 1, 5)");
  const Database lock = with("BEGIN EXCLUSIVE");
  const auto begin = std::chrono::steady_clock::now();

  expect(train(), 3, ": database is locked");

  const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - begin;
  EXPECT_LT(spent.count(), 1.0 * Meter::slowdown());
}

TEST_F(HostileDatabase, V18NoQueryWrites) {
  make("('a', 1, 5)");
  const std::string before = contentOf(path_);

  for (const char* query : {"DELETE FROM sales", "INSERT INTO sales VALUES ('b', 1, 5) RETURNING *",
                            "CREATE TABLE t(x)", "PRAGMA user_version = 7", "DROP TABLE sales"})
    expect(train(query), 2, ": the query should answer rows and write nothing");
  expect(train("SELECT * FROM sales; DELETE FROM sales"), 2, ": the query should be one statement");
  const Outcome attached = train("ATTACH '" + training_.folder().path("other.db") + "' AS other");
  EXPECT_EQ(attached.status, 2) << attached.error;

  EXPECT_EQ(contentOf(path_), before);
  training_.expectOldModel(1);
}

TEST_F(HostileDatabase, V18NullIsAnErrorNamingTheRow) {
  make("('a', 1, 5), ('a', 2, NULL), ('a', NULL, 6), (NULL, 3, 7)");

  expect(train(), 2, ":2:3: the item is empty");
  expect(train("SELECT * FROM sales WHERE item = 6"), 2,
         ":1:2: \"\" is neither a number nor a date and time");
  expect(train("SELECT * FROM sales WHERE item = 7"), 2, ":1:1: the customer is empty");
}

// Integers, reals, texts and bytes in one column: each counts as the text that it is written as.
TEST_F(HostileDatabase, V18AColumnMayChangeItsType) {
  make("('a', 1, 5), ('a', 2, 2.5), ('a', '3', 'tea'), ('a', 4, x'3637')");

  const Outcome outcome = train();

  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.error,
              HasSubstr("items are texts: \"2.5\" is no integer from 0 to 2147483647\n"));
  EXPECT_THAT(training_.sequences(), HasSubstr("\"5\" -1 2.5 -1 tea -1 \"67\" -1 #SUP: 1\n"));
}

TEST_F(HostileDatabase, V18ATimeThatBecomesATextIsBadInput) {
  make("('a', 1, 5), ('a', 'soon', 6)");

  expect(train(), 2, ":2:2: \"soon\" is neither a number nor a date and time");
}

TEST_F(HostileDatabase, V18ATextBeyondTheLimitIsBadInput) {
  make("('a', 1, 5)");

  expect(train("SELECT 'a' customer, 1 time, hex(zeroblob(600000)) item"), 2,
         ":1:3: the item is longer than 1048576 bytes, the limit");
  expect(train("SELECT 'a' customer, 1 time, hex(zeroblob(200000000)) item"), 2,
         ": string or blob too big");
}

// Ten million rows, at a tenth of the number: the memory is that of one row.
TEST_F(HostileDatabase, V18RowsAreReadOneByOne) {
  make("('a', 1, 5)");
  std::size_t rows = 0;
  sqlite3_memory_highwater(1);

  const Meter meter(0);
  {
    SqliteQuery query(path_,
                      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < "
                      "1000000) SELECT 'a' AS customer, i AS time, i % 7 AS item FROM n");
    while (query.next()) rows += query.field(0) == "a" ? 1 : 0;
    EXPECT_LT(meter.peakBytes(), kMegabyte);
    EXPECT_LT(sqlite3_memory_highwater(0), static_cast<sqlite3_int64>(8 * kMegabyte));
  }

  EXPECT_EQ(rows, 1'000'000U);
}

}  // namespace
