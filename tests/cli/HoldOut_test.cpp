// What of a log is held back, and what a model may see.

#include "cli/HoldOut.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace orbseq;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr double kLast = 0.0;

using Items = std::vector<std::int32_t>;
using Basket = std::pair<double, Items>;  // time, items
using Customer = std::vector<Basket>;

SequenceDatabase logOf(const std::vector<Customer>& customers) {
  SequenceDatabase log;
  for (const Customer& customer : customers) {
    log.beginCustomer();
    for (const auto& [time, items] : customer) {
      log.beginSet(time);
      for (const std::int32_t item : items) log.addItem(item);
    }
  }
  log.finish();
  return log;
}

std::string text(const Items& items) {
  std::string result;
  for (const std::int32_t item : items)
    result += (result.empty() ? "" : " ") + std::to_string(item);
  return result;
}

// A line a customer: "1:(3 5) 2:(7)".
std::vector<std::string> linesOf(const SequenceDatabase& log) {
  std::vector<std::string> lines;
  for (std::size_t customer = 0; customer < log.customers(); ++customer) {
    std::ostringstream line;
    for (std::size_t set = log.firstSet(customer); set < log.firstSet(customer + 1); ++set) {
      const auto items = log.items(set);
      if (set > log.firstSet(customer)) line << ' ';
      line << log.time(set) << ":(" << text(Items(items.begin(), items.end())) << ')';
    }
    lines.push_back(line.str());
  }
  return lines;
}

// "customer 2, sets 1 to 3, wants 4 7" with the set behind the last one.
std::vector<std::string> casesOf(const HoldOut& parts) {
  std::vector<std::string> lines;
  for (const HeldOut& one : parts.cases)
    lines.push_back("customer " + std::to_string(one.customer) + ", sets " +
                    std::to_string(one.firstSet) + " to " + std::to_string(one.lastSet) +
                    ", wants " + text(one.wanted));
  return lines;
}

TEST(HoldOut, TheLastBasketIsHeldBack) {
  const HoldOut parts =
      holdOut(logOf({{{1, {1, 2}}, {2, {3}}, {5, {4, 6}}}, {{3, {7}}, {4, {8}}}}), kLast);

  EXPECT_THAT(linesOf(parts.seen), ElementsAre("1:(1 2) 2:(3)", "3:(7)"));
  EXPECT_THAT(casesOf(parts), ElementsAre("customer 0, sets 0 to 2, wants 4 6",
                                          "customer 1, sets 3 to 4, wants 8"));
}

TEST(HoldOut, ACustomerOfOneBasketIsSeenAndNotAskedFor) {
  const HoldOut parts = holdOut(logOf({{{9, {5}}}, {{1, {1}}, {2, {2}}}, {{9, {6, 7}}}}), kLast);

  EXPECT_THAT(linesOf(parts.seen), ElementsAre("9:(5)", "1:(1)", "9:(6 7)"));
  EXPECT_THAT(casesOf(parts), ElementsAre("customer 1, sets 1 to 2, wants 2"));
}

TEST(HoldOut, BasketsOfOneTimeAreHeldBackOneByOne) {
  const HoldOut parts = holdOut(logOf({{{2, {1}}, {2, {3}}, {2, {2}}}}), kLast);

  EXPECT_THAT(linesOf(parts.seen), ElementsAre("2:(1) 2:(3)"));
  EXPECT_THAT(casesOf(parts), ElementsAre("customer 0, sets 0 to 2, wants 2"));
}

// The log's time is 0 to 10, its last fifth begins behind 8.
TEST(HoldOut, OfTheLastShareOfTimeEveryBasketIsHeldBack) {
  const HoldOut parts =
      holdOut(logOf({{{0, {1}}, {7, {2}}, {9, {3}}, {10, {4}}}, {{1, {5}}, {2, {6}}}}), 0.2);

  EXPECT_THAT(linesOf(parts.seen), ElementsAre("0:(1) 7:(2)", "1:(5) 2:(6)"));
  EXPECT_THAT(casesOf(parts), ElementsAre("customer 0, sets 0 to 2, wants 3 4"));
}

TEST(HoldOut, ABasketAtTheCutIsSeen) {
  const HoldOut parts =
      holdOut(logOf({{{0, {1}}, {8, {2}}, {8.001, {3}}}, {{8, {4}}, {10, {5}}}}), 0.2);

  EXPECT_THAT(linesOf(parts.seen), ElementsAre("0:(1) 8:(2)", "8:(4)"));
  EXPECT_THAT(casesOf(parts),
              ElementsAre("customer 0, sets 0 to 2, wants 3", "customer 1, sets 3 to 4, wants 5"));
}

TEST(HoldOut, ACustomerWhoComesFirstBehindTheCutIsInNeitherPart) {
  const HoldOut parts =
      holdOut(logOf({{{9, {7}}, {10, {8}}}, {{0, {1}}, {9, {2}}}, {{10, {9}}}}), 0.2);

  EXPECT_THAT(linesOf(parts.seen), ElementsAre("0:(1)"));
  EXPECT_THAT(casesOf(parts), ElementsAre("customer 1, sets 2 to 3, wants 2"));
}

TEST(HoldOut, OfALogOfOneTimeNothingIsHeldBackByShare) {
  const HoldOut parts = holdOut(logOf({{{4, {1}}, {4, {2}}}, {{4, {3}}}}), 0.5);

  EXPECT_THAT(linesOf(parts.seen), ElementsAre("4:(1) 4:(2)", "4:(3)"));
  EXPECT_THAT(parts.cases, IsEmpty());
}

TEST(HoldOut, ALogOfExtremeTimesIsCutAsWell) {
  const HoldOut parts = holdOut(logOf({{{-1.5e308, {1}}, {1.5e308, {2}}}}), 0.2);

  EXPECT_THAT(linesOf(parts.seen), ElementsAre("-1.5e+308:(1)"));
  EXPECT_THAT(casesOf(parts), ElementsAre("customer 0, sets 0 to 1, wants 2"));
}

TEST(HoldOut, WantedItemsAscendWithoutDuplicates) {
  const HoldOut parts =
      holdOut(logOf({{{0, {1}}, {6, {9, 2}}, {7, {5, 2}}, {10, {9, 1, 5}}}}), 0.5);

  EXPECT_THAT(linesOf(parts.seen), ElementsAre("0:(1)"));
  EXPECT_THAT(casesOf(parts), ElementsAre("customer 0, sets 0 to 1, wants 1 2 5 9"));
}

TEST(HoldOut, AnEmptyLogHasEmptyParts) {
  for (const double share : {kLast, 0.2}) {
    const HoldOut parts = holdOut(logOf({}), share);

    EXPECT_EQ(parts.seen.customers(), 0U);
    EXPECT_EQ(parts.seen.sets(), 0U);
    EXPECT_THAT(parts.cases, IsEmpty());
  }
}

TEST(HoldOut, ACustomerWithoutBasketsIsInNeitherPart) {
  for (const double share : {kLast, 0.5}) {
    const HoldOut parts = holdOut(logOf({{}, {{0, {1}}, {1, {2}}}}), share);

    EXPECT_THAT(linesOf(parts.seen), ElementsAre("0:(1)"));
    EXPECT_THAT(casesOf(parts), ElementsAre("customer 1, sets 0 to 1, wants 2"));
  }
}

TEST(HoldBack, IsLastOrAShareBetweenZeroAndOne) {
  EXPECT_EQ(holdBackOf("last"), 0.0);
  EXPECT_EQ(holdBackOf("0.2"), 0.2);
  EXPECT_EQ(holdBackOf("1e-3"), 0.001);
  EXPECT_EQ(holdBackOf("0.999"), 0.999);
}

TEST(HoldBack, IsNothingElse) {
  for (const char* text : {"", "0", "1", "-0.5", "2", "0.2x", " 0.2", "0.2 ", "nan", "inf", "Last",
                           "last ", "first", "0,2", "-0", "1e-999"})
    EXPECT_EQ(holdBackOf(text), std::nullopt) << text;
}

}  // namespace
