// The simulated shop: its catalogue, and that there is something to find in what customers buy.

#include "cli/Shop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

using namespace orbseq;

constexpr std::uint64_t kCustomers = 6000;

using Purchases = std::vector<Purchase>;

std::vector<Purchases> everybody(const Shop& shop) {
  std::vector<Purchases> all;
  for (std::uint64_t number = 1; number <= kCustomers; ++number)
    all.push_back(shop.customer(number));
  return all;
}

// The visits of a customer, oldest first.
std::map<std::int32_t, std::set<ProductId>> visitsOf(const Purchases& purchases) {
  std::map<std::int32_t, std::set<ProductId>> visits;
  for (const Purchase& purchase : purchases) visits[purchase.day].insert(purchase.product);
  return visits;
}

double share(std::size_t part, std::size_t whole) {
  return static_cast<double>(part) / static_cast<double>(whole);
}

TEST(ShopCatalogue, EveryNumberOfProductsIsMetWithCodesAndLabelsOfTheirOwn) {
  for (const std::size_t count : {50U, 51U, 61U, 400U, 5000U, 100'000U}) {
    const ShopCatalogue catalogue(count);
    std::set<std::string> codes, labels;
    for (const Product& product : catalogue.products()) {
      codes.insert(product.code);
      labels.insert(product.label);
    }

    EXPECT_EQ(catalogue.products().size(), count);
    EXPECT_EQ(codes.size(), count);
    EXPECT_EQ(labels.size(), count);
  }
}

TEST(ShopCatalogue, StartersLeadToRefillsThatLast) {
  const ShopCatalogue catalogue(50);
  for (const Department& department : catalogue.departments()) {
    const Product& starter = catalogue.products()[department.first];

    ASSERT_TRUE(starter.refill);
    EXPECT_EQ(*starter.refill, department.first + 1);
    EXPECT_EQ(starter.refillDays, 0);
    EXPECT_GE(catalogue.products()[*starter.refill].refillDays, 21);
    EXPECT_LE(catalogue.products()[*starter.refill].refillDays, 35);
  }
}

TEST(ShopCatalogue, TheWordsOfCompanionsFit) {
  const ShopCatalogue catalogue(400);
  std::map<std::string, std::string> companions;
  for (const Product& product : catalogue.products())
    if (product.companion)
      companions[product.label] = catalogue.products()[*product.companion].label;

  EXPECT_EQ(companions.at("classic black tea, 100 bags"), "classic whole milk, 1 litre");
  EXPECT_EQ(companions.at("sturdy wall paint, 5 litres"), "sturdy flat brush, 60 mm");
}

// Another generator would make other logs of the same options.
TEST(Shop, ACustomerIsAlwaysTheSame) {
  const Shop shop({.seed = 1});

  EXPECT_EQ(shop.customer(2), (Purchases{{269, 891, 4}, {269, 891, 5}, {269, 891, 382}}));
}

TEST(Shop, SeedsAndNumbersMakeOtherCustomers) {
  const Shop shop({.seed = 1});

  EXPECT_NE(shop.customer(1), shop.customer(2));
  EXPECT_NE(shop.customer(1), Shop({.seed = 2}).customer(1));
  EXPECT_NE(shop.customer(1), shop.customer((std::uint64_t{1} << 32U) + 1));
  EXPECT_NE(shop.customer(1), Shop({.seed = (std::uint64_t{1} << 32U) + 1}).customer(1));
}

TEST(Shop, PurchasesAscendWithinTheDays) {
  for (const std::int32_t days : {30, 31, 3650}) {
    const Shop shop({.products = 50, .days = days});
    for (const Purchases& purchases : everybody(shop)) {
      ASSERT_FALSE(purchases.empty());
      EXPECT_GE(purchases.front().day, 0);
      EXPECT_LT(purchases.back().day, days);
      for (std::size_t k = 1; k < purchases.size(); ++k) {
        const Purchase &one = purchases[k - 1], &next = purchases[k];
        EXPECT_TRUE(one.day < next.day || (one.day == next.day && one.minute == next.minute &&
                                           one.product < next.product));
      }
      for (const Purchase& purchase : purchases) {
        EXPECT_TRUE(purchase.minute >= 8 * 60 && purchase.minute < 21 * 60);
        EXPECT_LT(purchase.product, 50U);
      }
    }
  }
}

TEST(Shop, AQuarterComeOnceAndNobodyMoreThanTenTimes) {
  std::size_t once = 0, most = 0, visits = 0, mostItems = 0;
  for (const Purchases& purchases : everybody(Shop({}))) {
    const auto all = visitsOf(purchases);
    once += all.size() == 1 ? 1 : 0;
    visits += all.size();
    most = std::max(most, all.size());
    for (const auto& [day, items] : all) mostItems = std::max(mostItems, items.size());
  }

  EXPECT_GT(share(once, kCustomers), 0.21);
  EXPECT_LT(share(once, kCustomers), 0.29);
  EXPECT_GT(share(visits, kCustomers), 2.5);
  EXPECT_LT(share(visits, kCustomers), 4.0);
  EXPECT_EQ(most, 10U);
  EXPECT_EQ(mostItems, 6U);
}

// Of those who come again after taking a starter, against all customers.
TEST(Shop, RefillsFollowStartersFarMoreOftenThanByChance) {
  const Shop shop({});
  std::size_t starters = 0, followed = 0, byChance = 0;
  const ProductId machine = 0, capsules = *shop.products()[machine].refill;
  for (const Purchases& purchases : everybody(shop)) {
    const auto visits = visitsOf(purchases);
    bool owns = false, refills = false, cameAgain = false;
    for (const auto& [day, items] : visits) {
      cameAgain = cameAgain || owns;
      refills = refills || (owns && items.contains(capsules));
      owns = owns || items.contains(machine);
    }
    starters += cameAgain ? 1 : 0;
    followed += refills ? 1 : 0;
    byChance += std::any_of(visits.begin(), visits.end(),
                            [&](const auto& visit) { return visit.second.contains(capsules); })
                    ? 1
                    : 0;
  }

  EXPECT_GT(starters, 60U);
  EXPECT_GT(share(followed, starters), 0.6);
  EXPECT_LT(share(byChance, kCustomers), 0.06);
}

TEST(Shop, RefillsComeWeeksAfterTheStarter) {
  const Shop shop({});
  std::vector<std::int32_t> pauses;
  for (const Purchases& purchases : everybody(shop)) {
    std::int32_t last = -1;
    for (const auto& [day, items] : visitsOf(purchases)) {
      if (last >= 0 && items.contains(1)) {
        pauses.push_back(day - last);
        break;
      }
      if (items.contains(0)) last = day;
    }
  }

  ASSERT_GT(pauses.size(), 50U);
  std::sort(pauses.begin(), pauses.end());
  EXPECT_GE(pauses[pauses.size() / 2], 14);
  EXPECT_LE(pauses[pauses.size() / 2], 28);
}

TEST(Shop, CompanionsCompleteBaskets) {
  const Shop shop({});
  const ProductId tea = 4, milk = *shop.products()[tea].companion;
  std::size_t baskets = 0, withTea = 0, withMilk = 0, withBoth = 0;
  for (const Purchases& purchases : everybody(shop))
    for (const auto& [day, items] : visitsOf(purchases)) {
      ++baskets;
      withTea += items.contains(tea) ? 1 : 0;
      withMilk += items.contains(milk) ? 1 : 0;
      withBoth += items.contains(tea) && items.contains(milk) ? 1 : 0;
    }

  EXPECT_GT(share(withBoth, withTea), 0.45);
  EXPECT_LT(share(withMilk, baskets), 0.1);
}

TEST(Shop, CustomersTakeTheirHabitsAgain) {
  std::size_t again = 0, comeAgain = 0;
  for (const Purchases& purchases : everybody(Shop({}))) {
    const auto visits = visitsOf(purchases);
    if (visits.size() < 3) continue;
    std::set<ProductId> different;
    for (const Purchase& purchase : purchases) different.insert(purchase.product);
    ++comeAgain;
    again += different.size() < purchases.size() ? 1 : 0;
  }

  EXPECT_GT(share(again, comeAgain), 0.6);
}

// Sales of a department of the default catalogue by month.
std::array<std::size_t, 12> salesOf(const Shop& shop, const std::string& code,
                                    std::int32_t firstMonth) {
  std::array<std::size_t, 12> sales{};
  for (const Purchases& purchases : everybody(shop))
    for (const Purchase& purchase : purchases)
      if (shop.products()[purchase.product].code.starts_with(code))
        ++sales[static_cast<std::size_t>(purchase.day * 12 / 365 + firstMonth) % 12];
  return sales;
}

TEST(Shop, GardenThingsSellInSpringAndGiftsInDecember) {
  const Shop shop({});
  const auto garden = salesOf(shop, "GRD", 0);
  const auto gifts = salesOf(shop, "GFT", 0);

  EXPECT_GT(garden[3] + garden[4], 4 * (garden[10] + garden[11]));
  EXPECT_GT(gifts[11], 3 * gifts[6]);
}

TEST(Shop, SeasonsKeepToTheCalendarWhateverTheStart) {
  const Shop shop({.start = std::chrono::year(2025) / std::chrono::July / 1});
  const auto garden = salesOf(shop, "GRD", 6);

  EXPECT_GT(garden[3] + garden[4], 4 * (garden[10] + garden[11]));
}

TEST(Shop, FewProductsAreWantedMuchAndManyALittle) {
  const Shop shop({});
  std::vector<std::size_t> sales(400);
  std::size_t all = 0;
  for (const Purchases& purchases : everybody(shop))
    for (const Purchase& purchase : purchases) {
      ++sales[purchase.product];
      ++all;
    }
  std::sort(sales.rbegin(), sales.rend());
  std::size_t best = 0;
  for (std::size_t k = 0; k < 40; ++k) best += sales[k];

  EXPECT_GT(share(best, all), 0.3);
  EXPECT_GT(sales.back(), 0U);
}

}  // namespace
