// Whether every row of a list has a test in this program: tests are named after their rows.

#ifndef TESTS_HOSTILE_ROWNAMES_H_
#define TESTS_HOSTILE_ROWNAMES_H_

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace orbseq::test {

// Expects a test for each of the rows 1 to `rows` of the list of that letter: "D01..", "D02..".
inline void expectTestsOfRows(char list, int rows) {
  constexpr std::size_t kIdBytes = 3;
  std::set<std::string> found;
  const testing::UnitTest& program = *testing::UnitTest::GetInstance();
  for (int suite = 0; suite < program.total_test_suite_count(); ++suite) {
    const testing::TestSuite& tests = *program.GetTestSuite(suite);
    for (int test = 0; test < tests.total_test_count(); ++test) {
      const std::string name = tests.GetTestInfo(test)->name();
      found.insert(name.substr(name.rfind('/') + 1, kIdBytes));
    }
  }
  for (int row = 1; row <= rows; ++row) {
    const std::string id = list + std::string(row < 10 ? "0" : "") + std::to_string(row);
    EXPECT_EQ(found.count(id), 1U) << "no test for " << id;
  }
}

}  // namespace orbseq::test

#endif  // TESTS_HOSTILE_ROWNAMES_H_
