#include "scoring/hostapi/ScoringLog.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace {

using OrbScore::ScoringLog;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

class ScoringLogTest : public ::testing::Test {
 protected:
  ScoringLogTest() {
    log.SetSink([this](int level, const std::string& line) { lines.emplace_back(level, line); });
  }
  ~ScoringLogTest() override {
    log.SetSink({});
    log.SetLevel(0);
  }

  ScoringLog& log = ScoringLog::GetInstance();
  std::vector<std::pair<int, std::string>> lines;
};

TEST_F(ScoringLogTest, TracesNothingAtFirst) {
  EXPECT_EQ(log.GetLevel(), 0);

  log.TraceText(1, "Enter:%s", "a");

  EXPECT_THAT(lines, IsEmpty());
}

TEST_F(ScoringLogTest, TracesUpToItsLevel) {
  log.SetLevel(2);

  log.TraceText(1, "Enter:%s", "a");
  log.TraceText(2, "Exit:%s", "b");
  log.TraceText(3, "More:%s", "c");

  EXPECT_THAT(lines, ElementsAre(Pair(1, "Enter:a"), Pair(2, "Exit:b")));
}

TEST_F(ScoringLogTest, ReplacesTheFirstMarkAndNothingElse) {
  log.TraceText(0, "%d %s %s %n", "%s%n");

  EXPECT_THAT(lines, ElementsAre(Pair(0, "%d %s%n %s %n")));
}

TEST_F(ScoringLogTest, AFormatWithoutMarkStandsAsItIs) {
  log.TraceText(0, "plain", "ignored");

  EXPECT_THAT(lines, ElementsAre(Pair(0, "plain")));
}

TEST_F(ScoringLogTest, NullTextsAreEmpty) {
  log.TraceText(0, "a%sb", nullptr);
  log.TraceText(0, nullptr, "c");

  EXPECT_THAT(lines, ElementsAre(Pair(0, "ab"), Pair(0, "")));
}

TEST_F(ScoringLogTest, DropsALineThatTheSinkCannotTake) {
  log.SetSink([](int, const std::string&) { throw std::runtime_error("full"); });

  EXPECT_NO_THROW(log.TraceText(0, "%s", "a"));
}

TEST_F(ScoringLogTest, AnEmptySinkRestoresTheStandardErrorStream) {
  log.SetSink({});
  ::testing::internal::CaptureStderr();

  log.TraceText(0, "Enter:%s", "a");

  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Enter:a\n");
}

TEST_F(ScoringLogTest, EightThreadsTraceEveryLineWhole) {
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 8; ++thread)
    threads.emplace_back([this] {
      for (int i = 0; i < 100; ++i) {
        log.TraceText(0, "Enter:%s", "a line");
        log.SetLevel(log.GetLevel());
      }
    });
  for (std::thread& thread : threads) thread.join();

  EXPECT_EQ(lines.size(), 800u);
  EXPECT_THAT(lines, ::testing::Each(Pair(0, "Enter:a line")));
}

}  // namespace
