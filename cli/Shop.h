// A simulated shop: what its customers buy, and when. Nothing is read or written.
//
// What a customer does. About a quarter come once. The others come two to ten times, mostly two to
// five, days or weeks apart, and take one to six products each time:
//   taste       one to three departments get most of a customer's interest
//   habits      two to four products of those are taken again and again
//   refills     who has taken a starter comes back for its refill when that is due, three to five
//               weeks later, and again for the next one
//   companions  who takes a product that has a companion takes that too, more often than not
//   seasons     garden things sell in spring, toys and gifts in December, and so on: out of season
//               even habits and taste are followed less
//   popularity  within a department few products are wanted much and many a little
// Of what is taken, only taste, habits and refills reach from one visit to the next.
//
// Determinism. The same options give the same purchases on every machine and with every compiler:
// the generator is std::mt19937_64, seeded through std::seed_seq, both of which the language's
// standard defines to the bit, and everything else is arithmetic of integers. A customer depends on
// the options and the customer's number alone, not on other customers.
//
// Threads. Every operation is const: any number of threads may ask one shop at once.
// Memory. Some hundred bytes for a product and one for a day.

#ifndef CLI_SHOP_H_
#define CLI_SHOP_H_

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "cli/ShopCatalogue.h"

namespace orbseq {

struct ShopOptions {
  std::uint64_t seed = 1;      // any
  std::size_t products = 400;  // ShopCatalogue::kFewestProducts to kMostProducts
  std::int32_t days = 365;     // how long the shop is watched, 30 to 3650 days
  // The first of the days; it decides which of them are December.
  std::chrono::year_month_day start{std::chrono::year(2025), std::chrono::January,
                                    std::chrono::day(1)};
};

struct Purchase {
  std::int32_t day;     // 0 .. days - 1, from the start
  std::int32_t minute;  // of the day, 0 .. 1439; the shop is open from 8:00 to 20:59
  ProductId product;

  friend bool operator==(const Purchase&, const Purchase&) = default;
};

class Shop {
 public:
  static constexpr std::int32_t kFewestDays = 30;
  static constexpr std::int32_t kMostDays = 3650;

  // Requires options in their ranges and a start that is a day of the calendar.
  explicit Shop(const ShopOptions& options);

  const std::vector<Product>& products() const noexcept { return catalogue_.products(); }

  // All that the customer of this number buys: visits ascend by time, at most one a day, and the
  // products of a visit, which share its minute, ascend without duplicates. Never empty. Cost: some
  // microseconds, most of them for seeding.
  std::vector<Purchase> customer(std::uint64_t number) const;

 private:
  ShopCatalogue catalogue_;
  std::uint64_t seed_;
  std::vector<std::uint8_t> months_;  // [days] the month that a day is in; 0 is January
};

}  // namespace orbseq

#endif  // CLI_SHOP_H_
