// A whole lattice in lines of XML with its lines spoilt, and in several threads at once.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <functional>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/hostile/Meter.h"
#include "tests/hostile/binaryParts.h"
#include "tests/hostile/latticeFiles.h"
#include "tests/hostile/rowNames.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace orbseq::test;
using Lines = std::vector<std::string>;

Lines linesOf(const std::string& text) {
  Lines lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::string joined(const Lines& lines, const std::string& separator) {
  std::string text;
  for (const std::string& line : lines) text += line + separator;
  return text;
}

// --- Spoilt lines --------------------------------------------------------------------------------

struct Spoiling {
  std::string name;
  // Spoils the lines at one of them; the generator is for what is drawn.
  std::function<void(Lines&, std::size_t, std::mt19937&)> spoil;
};

std::ostream& operator<<(std::ostream& out, const Spoiling& row) { return out << row.name; }

std::vector<Spoiling> allSpoilings() {
  using Random = std::mt19937;
  const auto at = [](Lines& lines, std::size_t i) {
    return lines.begin() + static_cast<std::ptrdiff_t>(i);
  };
  const auto replaceValue = [](std::string& line, const std::string& value) {
    const std::size_t begin = line.find("value=\"");
    if (begin == std::string::npos) return;
    line.replace(begin + 7, line.rfind('"') - begin - 7, value);
  };
  std::vector<Spoiling> rows = {
      {"O15_Deleted", [=](Lines& lines, std::size_t i, Random&) { lines.erase(at(lines, i)); }},
      {"O15_Doubled",
       [=](Lines& lines, std::size_t i, Random&) { lines.insert(at(lines, i), lines[i]); }},
      {"O15_SwappedWithTheNext",
       [](Lines& lines, std::size_t i, Random&) {
         std::swap(lines[i], lines[(i + 1) % lines.size()]);
       }},
      {"O15_SwappedWithAnother",
       [](Lines& lines, std::size_t i, Random& random) {
         std::swap(lines[i], lines[random() % lines.size()]);
       }},
      {"O15_TheLast", [](Lines& lines, std::size_t i, Random&) { lines.resize(i + 1); }},
      {"O15_Emptied", [](Lines& lines, std::size_t i, Random&) { lines[i].clear(); }},
      {"O16_NulWithin",
       [](Lines& lines, std::size_t i, Random& random) {
         lines[i].insert(random() % (lines[i].size() + 1), 1, '\0');
       }},
      {"O02_TooLong",
       [](Lines& lines, std::size_t i, Random&) { lines[i] += std::string(300, ' '); }},
  };
  for (const char* value : {"2147483647", "-1", "0", "-2147483648", "33", "x"})
    rows.push_back({std::string("O15_Value") + (value[0] == '-' ? "Minus" : "") +
                        (value[0] == '-' ? value + 1 : value),
                    [=](Lines& lines, std::size_t i, Random&) { replaceValue(lines[i], value); }});
  return rows;
}

class ObjectXmlSpoilt : public ::testing::TestWithParam<Spoiling> {};

TEST_P(ObjectXmlSpoilt, AtAnyLineIsRefusedOrGivesALatticeThatAnswers) {
  const Lines good = linesOf(validObjectXml());
  ASSERT_GT(good.size(), 400U);
  expectCleanAnswers(ValidLattice().dictionary());  // makes what is made once
  constexpr std::uint32_t kSeed = 1;
  std::mt19937 random(kSeed);
  std::size_t refused = 0;
  for (std::size_t i = 0; i < good.size() && !HasFailure(); ++i) {
    SCOPED_TRACE("line " + std::to_string(i) + ", seed " + std::to_string(kSeed));
    Lines lines = good;
    GetParam().spoil(lines, i, random);
    const std::string text = joined(lines, "\n");
    const Meter meter(text.size());
    {
      SequenceDictionary read;
      const ReadOutcome outcome = readXmlFileInto(read, text);
      const bool isRead = outcome.count > 0;
      if (!isRead) ++refused;
      EXPECT_LE(std::count(outcome.printed.begin(), outcome.printed.end(), '\n'), isRead ? 0 : 1);
      if (outcome.isRefused()) {
        EXPECT_EQ(outcome.printed, kSettingsMessage);
        EXPECT_FALSE(isRead);
      }
      expectCleanAnswers(read);  // a part of the lattice answers as well
    }
    meter.check();
  }
  EXPECT_GT(refused, 0U);
}

INSTANTIATE_TEST_SUITE_P(Hostile, ObjectXmlSpoilt, ::testing::ValuesIn(allSpoilings()),
                         nameOf<Spoiling>);

// --- Whole streams -------------------------------------------------------------------------------

struct Stream {
  std::string name;
  std::string text;
};

std::ostream& operator<<(std::ostream& out, const Stream& row) { return out << row.name; }

std::vector<Stream> acceptedStreams() {
  const Lines lines = linesOf(validObjectXml());
  const std::string text = joined(lines, "\n");
  return {
      {"O16_LineFeeds", text},
      {"O16_CarriageReturnsAndLineFeeds", joined(lines, "\r\n")},
      {"O16_NoFinalNewline", text.substr(0, text.size() - 1)},
      {"O16_NoFinalNewlineAfterACarriageReturn",
       joined(lines, "\r\n").substr(0, joined(lines, "\r\n").size() - 1)},
      {"O16_MoreBehindTheEnd", text + std::string(1024, '<')},
  };
}

class ObjectXmlStream : public ::testing::TestWithParam<Stream> {};

TEST_P(ObjectXmlStream, IsReadFromMemoryAndFromAFile) {
  const std::string& text = GetParam().text;
  const TempFolder folder;
  const std::string path = folder.file("lattice", text);
  expectValidLattice(ValidLattice().dictionary());  // makes what is made once
  const Meter meter(text.size());
  {
    SequenceDictionary read;
    const ReadOutcome outcome = readXmlFileInto(read, text);
    EXPECT_GT(outcome.count, 0U);
    EXPECT_EQ(outcome.printed, "");
    expectValidLattice(read);
    std::fstream file(path);
    EXPECT_EQ(read.readObjectXML(file), outcome.count);
    expectValidLattice(read);
  }
  meter.check();
}

INSTANTIATE_TEST_SUITE_P(Hostile, ObjectXmlStream, ::testing::ValuesIn(acceptedStreams()),
                         nameOf<Stream>);

TEST(ObjectXmlFiles, O01WhatIsNoFileGivesZeroWithoutAMessage) {
  const TempFolder folder;
  const std::string valid = folder.file("valid", validObjectXml());
  const Meter meter(0);
  for (const std::string& path :
       {folder.path("none"), folder.path().string(), std::string("/dev/zero"), valid}) {
    std::fstream file(path, std::ios::in);
    if (path == valid) file.setstate(std::ios::badbit);
    SequenceDictionary read;
    const ReadOutcome outcome =
        outcomeOf({}, [&](std::istream&) { return read.readObjectXML(file); });
    EXPECT_EQ(outcome.count, 0U) << path;
    EXPECT_EQ(outcome.printed, "") << path;
    EXPECT_EQ(outcome.thrown, "") << path;
  }
  meter.check();
}

// --- Threads -------------------------------------------------------------------------------------

// Half of the files are valid; the others lack some of their last lines, for which no message is
// promised that threads would print at once.
TEST(ObjectXmlFiles, O18EightThreadsReadEightFiles) {
  constexpr std::size_t kThreads = 8;
  constexpr int kRounds = 20;
  const TempFolder folder;
  const Lines good = linesOf(validObjectXml());
  expectCleanAnswers(ValidLattice().dictionary());  // makes what is made once
  expectValidLattice(ValidLattice().dictionary());
  std::vector<std::string> paths;
  for (std::size_t i = 0; i < kThreads; ++i) {
    Lines lines = good;
    if (i % 2 != 0) lines.resize(lines.size() - (i + 1) / 2);
    paths.push_back(folder.file("lattice" + std::to_string(i), joined(lines, "\n")));
  }
  std::vector<int> valid(kThreads), refused(kThreads);
  const Meter meter(kThreads * kRounds * validObjectXml().size());
  {
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < kThreads; ++i)
      threads.emplace_back([&, i] {
        for (int round = 0; round < kRounds; ++round) {
          std::fstream file(paths[i], std::ios::in);
          SequenceDictionary read;
          if (read.readObjectXML(file) == 0) {
            ++refused[i];
            continue;
          }
          ++valid[i];
          expectValidLattice(read);
        }
      });
    for (std::thread& thread : threads) thread.join();
  }
  for (std::size_t i = 0; i < kThreads; ++i)
    EXPECT_EQ(i % 2 == 0 ? valid[i] : refused[i], kRounds) << i;
  meter.check();
}

// --- The list ------------------------------------------------------------------------------------

TEST(ObjectXmlFiles, HaveATestForEveryRow) { expectTestsOfRows('O', 18); }

}  // namespace
