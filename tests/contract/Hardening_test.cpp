// What a fault in the code would meet: the hardening of the program and of both libraries.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/contract/commandLines.h"

namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

std::string outputOf(const std::string& command) {
  std::string text;
  for (const std::string& line : test::linesOf(command)) text += line + '\n';
  return text;
}

class Hardening : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    if (!ORBSEQ_HARDEN) GTEST_SKIP() << "this build is not hardened (ORBSEQ_HARDEN is off)";
  }
  static std::string quoted() { return " '" + std::string(GetParam()) + "'"; }
};

TEST_P(Hardening, TablesOfAddressesAreClosedBeforeTheProgramRuns) {
  EXPECT_THAT(outputOf("readelf -lW" + quoted()), HasSubstr("GNU_RELRO"));
  EXPECT_THAT(outputOf("readelf -dW" + quoted()), HasSubstr("NOW"));
}

TEST_P(Hardening, NeitherStackNorDataAreExecuted) {
  const std::string segments = outputOf("readelf -lW" + quoted());

  EXPECT_THAT(segments, ContainsRegex("GNU_STACK .* RW "));
  EXPECT_THAT(segments, Not(HasSubstr("RWE")));
}

TEST_P(Hardening, StackAndLibraryCallsAreChecked) {
  const std::string needed = outputOf("nm -D --undefined-only" + quoted());

  EXPECT_THAT(needed, HasSubstr("__stack_chk_fail"));
  EXPECT_THAT(needed, ContainsRegex("__[a-z]+_chk@"));
  EXPECT_THAT(needed, HasSubstr("__glibcxx_assert_fail"));
}

#ifdef __x86_64__
// Where a jump may land, functions begin with such a mark; one or two come with the C library.
TEST_P(Hardening, JumpsAreChecked) {
  const std::string marks = outputOf("objdump -d" + quoted() + " | grep -c endbr64");

  EXPECT_GT(std::stoi(marks), 100);
}
#endif

INSTANTIATE_TEST_SUITE_P(Everything, Hardening,
                         testing::Values(ORBSEQ_MODULE, ORBSEQ_HOST, ORBSEQ_PROGRAM),
                         [](const auto& file) {
                           const std::string name = file.param;
                           if (name == ORBSEQ_MODULE) return "module";
                           return name == ORBSEQ_HOST ? "host" : "program";
                         });

}  // namespace
