#include "io/SqliteQuery.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sqlite3.h>
#include <unistd.h>
#include <zlib.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "host/EnvironmentError.h"
#include "io/IoError.h"
#include "io/LogReader.h"
#include "io/process.h"
#include "tests/support/TempFolder.h"

namespace {

using orbseq::FileError;
using orbseq::InputError;
using orbseq::LogFormat;
using orbseq::LogOptions;
using orbseq::SqliteQuery;
using orbseq::test::contentOf;
using orbseq::test::errorOf;
using orbseq::test::TempFolder;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

constexpr const char* kPurchases =
    "CREATE TABLE sales(who TEXT, day REAL, what, note TEXT);"
    "INSERT INTO sales VALUES('ann', 2.5, 'tea', 'green'), ('bob', 1, 'milk', NULL),"
    "('ann', 1, 'milk', ''), ('bob', 3, 7, 'lucky');";

class Sqlite : public testing::Test {
 protected:
  std::string database(const std::string& name, const char* statements = kPurchases) {
    const std::string path = folder_.path(name);
    sqlite3* opened = nullptr;
    EXPECT_EQ(sqlite3_open(path.c_str(), &opened), SQLITE_OK);
    const std::unique_ptr<sqlite3, int (*)(sqlite3*)> owned(opened, sqlite3_close);
    EXPECT_EQ(sqlite3_exec(opened, statements, nullptr, nullptr, nullptr), SQLITE_OK);
    return path;
  }

  std::string compressed(const std::string& path) {
    const std::string bytes = contentOf(path);
    const std::string target = path + ".gz";
    gzFile file = gzopen(target.c_str(), "wb");
    EXPECT_EQ(gzwrite(file, bytes.data(), static_cast<unsigned>(bytes.size())),
              static_cast<int>(bytes.size()));
    gzclose(file);
    return target;
  }

  static std::string errorIn(const std::string& path, const std::string& sql) {
    return errorOf<InputError>([&] {
      SqliteQuery query(path, sql);
      while (query.next()) continue;
    });
  }

  const TempFolder folder_;
};

TEST_F(Sqlite, RowsComeAsTexts) {
  SqliteQuery query(database("f.db"), "SELECT what, day, note FROM sales ORDER BY rowid;");
  EXPECT_EQ(query.columnOf("day"), 1U);
  std::vector<std::string> found;
  while (query.next())
    found.push_back(std::to_string(query.row()) + "|" + std::string(query.field(0)) + "|" +
                    std::string(query.field(1)) + "|" + std::string(query.field(2)));
  EXPECT_THAT(found, ElementsAre("1|tea|2.5|green", "2|milk|1.0|", "3|milk|1.0|", "4|7|3.0|lucky"));
}

TEST_F(Sqlite, ALogIsReadByQueryPlainAndCompressed) {
  const std::string path = database("f.db");
  LogOptions options;
  options.format = LogFormat::kSqlite;
  options.query = "SELECT who AS customer, day AS time, what AS item, note AS label FROM sales";
  options.label = "label";
  for (const std::string& file : {path, compressed(path)}) {
    const orbseq::TransactionLog log = readLog(file, options);
    EXPECT_THAT(log.customers, ElementsAre("ann", "bob"));
    EXPECT_EQ(log.database.sets(), 4U);
    EXPECT_EQ(log.rows, 4U);
    EXPECT_THAT(log.labels, ElementsAre(testing::Pair(1, "7 lucky"), testing::Pair(2, "milk"),
                                        testing::Pair(3, "tea green")));
  }
}

TEST_F(Sqlite, BadRowsAreToldByTheirNumberInTheAnswer) {
  const std::string path = database("f.db");
  LogOptions options;
  options.format = LogFormat::kSqlite;
  options.query = "SELECT who AS customer, note AS time, what AS item FROM sales ORDER BY rowid";
  EXPECT_THAT(errorOf<InputError>([&] { readLog(path, options); }),
              HasSubstr("f.db:1:2: \"green\" is neither a number"));
  options.skipBadRows = 4;
  EXPECT_EQ(readLog(path, options).badRows, 4U);
}

TEST_F(Sqlite, NothingIsWritten) {
  const std::string path = database("f.db");
  EXPECT_THAT(errorIn(path, "DELETE FROM sales"),
              EndsWith("the query should answer rows and write nothing"));
  EXPECT_THAT(errorIn(path, "DELETE FROM sales RETURNING who"),
              EndsWith("the query should answer rows and write nothing"));
  EXPECT_THAT(errorIn(path, "ATTACH 'other.db' AS other"),
              EndsWith("the query should answer rows and write nothing"));
  EXPECT_THAT(errorIn(path, "SELECT 1; DELETE FROM sales"), EndsWith("should be one statement"));
  SqliteQuery query(path, "SELECT count(*) FROM sales");
  ASSERT_TRUE(query.next());
  EXPECT_EQ(query.field(0), "4");
}

TEST_F(Sqlite, BadQueriesAreRefused) {
  const std::string path = database("f.db");
  EXPECT_THAT(errorIn(path, ""), EndsWith("a database wants a query"));
  EXPECT_THAT(errorIn(path, " ; "), EndsWith("should be one statement"));
  EXPECT_THAT(errorIn(path, "SELECT shade FROM sales"), HasSubstr("no such column"));
  EXPECT_THAT(errorIn(path, "SELEKT"), HasSubstr("syntax error"));
  EXPECT_THAT(errorIn(path, "SELECT CAST(x'FF' AS TEXT)"),
              HasSubstr("f.db:1:1: the text is no UTF-8"));
  EXPECT_THAT(errorIn(path, "SELECT 1, CAST(x'6100' AS TEXT)"),
              EndsWith("f.db:1:2: the text is no UTF-8, or holds a NUL"));
  EXPECT_THAT(errorIn(path, "SELECT 1 LIMIT 'abc'"), EndsWith("f.db: datatype mismatch"));
  EXPECT_THAT(
      errorOf<InputError>([&] { SqliteQuery(path, "SELECT who FROM sales").columnOf("a"); }),
      EndsWith("no column \"a\"; the columns are \"who\""));
}

TEST_F(Sqlite, WhatIsNoDatabaseIsRefused) {
  EXPECT_THAT(errorIn(folder_.file("f.db", "customer,time,item\n"), "SELECT 1 FROM x"),
              HasSubstr("file is not a database"));
  EXPECT_THAT(errorIn(folder_.file("f.db", "\x1Fx"), "SELECT 1 FROM x"),
              HasSubstr("file is not a database"));
  EXPECT_THAT(errorIn(folder_.file("f.db", "\x1F"), "SELECT 1 FROM x"),
              HasSubstr("no such table: x"))
      << "SQLite takes a file of one byte for a database without tables";
  const std::string cut = compressed(database("g.db"));
  std::filesystem::resize_file(cut, std::filesystem::file_size(cut) / 2);
  EXPECT_THAT(errorIn(cut, "SELECT who FROM sales"), HasSubstr("the gzip data end too early"));
  EXPECT_THROW(SqliteQuery(folder_.path("none.db"), "SELECT 1"), FileError);
}

TEST_F(Sqlite, ACompressedDatabaseBeyondTheLimitOfMemoryIsRefused) {
  const std::string path = database("f.db");
  const std::string packed = compressed(path);
  const std::size_t size = std::filesystem::file_size(path);

  EXPECT_NO_THROW(SqliteQuery(packed, "SELECT who FROM sales", size));
  EXPECT_THAT(
      errorOf<InputError>([&] { SqliteQuery(packed, "SELECT who FROM sales", size - 1); }),
      HasSubstr("the database is larger than " + std::to_string(size - 1) + " bytes, the limit"));
}

// SQLite opens no path of more than 512 bytes, which the system does.
TEST_F(Sqlite, ADatabaseThatSqliteCannotOpenIsAnErrorOfTheEnvironment) {
  std::filesystem::path deep = folder_.path();
  for (int i = 0; i < 3; ++i) deep /= std::string(200, 'd');
  std::filesystem::create_directories(deep);
  std::filesystem::rename(database("f.db"), deep / "f.db");

  EXPECT_THAT(errorOf<OrbScore::EnvironmentError>(
                  [&] { SqliteQuery(deep / "f.db", "SELECT who FROM sales"); }),
              EndsWith("f.db: unable to open database file"));
}

// Ends the process; what the query throws stands on standard error. Without an end at the request
// the query takes a minute or so.
[[noreturn]] void askToStopDuringAQuery(const std::string& path) {
  ::signal(SIGINT, SIG_DFL);
  orbseq::watchForInterrupt();
  SqliteQuery query(path,
                    "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < "
                    "200000000) SELECT count(*) FROM n");
  std::thread person([] {
    ::usleep(50'000);
    ::kill(::getpid(), SIGINT);
  });
  std::cerr << errorOf<OrbScore::EnvironmentError>([&] { query.next(); });
  person.join();
  std::exit(orbseq::interrupted() ? 0 : 1);
}

TEST_F(Sqlite, ARequestToStopEndsALongQuery) {
  const std::string path = database("f.db");
  EXPECT_EXIT(askToStopDuringAQuery(path), testing::ExitedWithCode(0), "f.db: interrupted$");
}

TEST_F(Sqlite, ADamagedDatabaseIsAnErrorAndNoCrash) {
  const std::string path = database("f.db");
  const std::string bytes = contentOf(path);
  std::size_t refused = 0;
  for (std::size_t at = 0; at < bytes.size(); at += 7) {
    std::string damaged = bytes;
    damaged[at] = static_cast<char>(damaged[at] ^ 0x5A);
    try {
      SqliteQuery query(folder_.file("d.db", damaged), "SELECT who, what FROM sales");
      while (query.next()) continue;
    } catch (const InputError&) {
      ++refused;
    } catch (const OrbScore::EnvironmentError&) {
      ++refused;
    }
  }
  EXPECT_GT(refused, 10U);
}

}  // namespace
