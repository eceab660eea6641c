#include "cli/Shop.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <iterator>
#include <random>
#include <span>
#include <utility>

namespace orbseq {

namespace {

constexpr std::size_t kMostItems = 6;  // of a visit

// Chances, in per cent.
constexpr std::uint32_t kComesOnce = 24;
constexpr std::uint32_t kComesAgain = 60;
constexpr std::uint32_t kTakesAnother = 55;
constexpr std::uint32_t kRefillsWhenDue = 80;
constexpr std::uint32_t kFollowsHabit = 40;
constexpr std::uint32_t kStaysWithTaste = 70;
constexpr std::uint32_t kWantsStarter = 8;
constexpr std::uint32_t kWantsOtherRefill = 1;
constexpr std::uint32_t kTakesCompanion = 55;

// One customer's chance. Draws stand in statements of their own where their order matters.
class Dice {
 public:
  Dice(std::uint64_t seed, std::uint64_t number) {
    const auto high = [](std::uint64_t value) { return static_cast<std::uint32_t>(value >> 32U); };
    const auto low = [](std::uint64_t value) { return static_cast<std::uint32_t>(value); };
    std::seed_seq words{high(seed), low(seed), high(number), low(number)};
    engine_.seed(words);
  }

  // 0 .. end - 1, each as likely but for one part in 2^32. Requires end > 0.
  std::uint32_t below(std::uint32_t end) {
    return static_cast<std::uint32_t>(((engine_() >> 32U) * end) >> 32U);
  }

  bool happens(std::uint32_t percent) { return below(100) < percent; }

  // How often in a row a thing of that chance happens, at most `most`.
  std::uint32_t run(std::uint32_t percent, std::uint32_t most) {
    std::uint32_t length = 0;
    while (length < most && happens(percent)) ++length;
    return length;
  }

  // A place by the running sums of the places' weights.
  std::uint32_t place(std::span<const std::uint32_t> sums) {
    const auto found = std::upper_bound(sums.begin(), sums.end(), below(sums.back()));
    return static_cast<std::uint32_t>(std::distance(sums.begin(), found));
  }

 private:
  std::mt19937_64 engine_;
};

// The running sums, of as many as there are departments, by which one is drawn.
class DepartmentSums {
 public:
  void add(std::uint32_t weight) {
    total_ += weight;
    sums_[size_++] = total_;
  }
  std::span<const std::uint32_t> view() const { return {sums_.data(), size_}; }

 private:
  std::array<std::uint32_t, 16> sums_{};
  std::size_t size_ = 0;
  std::uint32_t total_ = 0;
};

// One customer while the shop is watched.
class Visitor {
 public:
  Visitor(const ShopCatalogue& catalogue, std::span<const std::uint8_t> months, const Dice& dice)
      : catalogue_(catalogue), months_(months), dice_(dice) {
    for (const Department& department : catalogue.departments()) all_.push_back(&department);
  }

  std::vector<Purchase> purchases() {
    chooseTaste();
    const auto days = static_cast<std::uint32_t>(months_.size());
    std::uint32_t visits = dice_.happens(kComesOnce) ? 1 : 2 + dice_.run(kComesAgain, 8);
    std::uint32_t pause = 10 + dice_.below(30);
    // Late comers come at shorter pauses, so that the last months are as busy as the others.
    std::uint32_t day = dice_.below(days - std::min(days / 2, (visits - 1) * pause / 4));
    pause = std::min(pause, std::max(1U, (days - day) / visits));
    for (; visits > 0 && day < days; --visits) {
      visit(day);
      day = nextDay(day, pause);
    }
    return std::move(purchases_);
  }

 private:
  struct Habit {
    const Department* department;
    ProductId product;
  };

  struct Due {
    ProductId refill;
    std::uint32_t day;
  };

  const Product& product(ProductId id) const { return catalogue_.products()[id]; }

  ProductId ordinaryOf(const Department& department) {
    return department.ordinary + dice_.place(department.weights);
  }

  void chooseTaste() {
    DepartmentSums sums;
    for (const Department* const department : all_) sums.add(department->share);
    const std::uint32_t tastes = 1 + dice_.below(3);
    while (taste_.size() < tastes) {
      const Department* const chosen = all_[dice_.place(sums.view())];
      if (std::find(taste_.begin(), taste_.end(), chosen) == taste_.end()) taste_.push_back(chosen);
    }
    const std::uint32_t habits = 2 + dice_.below(3);
    for (std::uint32_t k = 0; k < habits; ++k) {
      const Department& department = *taste_[k % tastes];
      habits_.push_back({&department, ordinaryOf(department)});
    }
  }

  // Weeks after `day`, but not after a refill is due.
  std::uint32_t nextDay(std::uint32_t day, std::uint32_t pause) {
    std::uint32_t next = day + 1 + dice_.below(pause);
    next += dice_.below(pause);
    for (const Due& due : due_) next = std::min(next, due.day);
    return next;
  }

  void visit(std::uint32_t day) {
    basket_.clear();
    const std::uint32_t opened = dice_.below(13 * 60);
    const std::size_t size = 1 + dice_.run(kTakesAnother, 4);
    takeRefills(day);
    // A few vain attempts are allowed: what is drawn may be in the basket already.
    for (std::size_t attempt = 0; attempt < 3 * size && basket_.size() < size; ++attempt)
      take(wish(day), day);
    std::sort(basket_.begin(), basket_.end());
    for (const ProductId taken : basket_)
      purchases_.push_back(
          {static_cast<std::int32_t>(day), static_cast<std::int32_t>(8 * 60 + opened), taken});
  }

  // Those that are due by now or in the next days; what is not taken is thought of a week later.
  void takeRefills(std::uint32_t day) {
    for (Due& due : due_) {
      if (due.day > day + 3) continue;
      due.day = day + 7;
      if (dice_.happens(kRefillsWhenDue)) take(due.refill, day);
    }
  }

  ProductId wish(std::uint32_t day) {
    if (dice_.happens(kFollowsHabit)) {
      const Habit& habit = habits_[dice_.below(static_cast<std::uint32_t>(habits_.size()))];
      if (inSeason(*habit.department, day)) return habit.product;
    }
    const Department& department = departmentOn(day);
    const std::uint32_t kind = dice_.below(100);
    if (kind >= kWantsStarter + kWantsOtherRefill) return ordinaryOf(department);
    // The lower of two: the first families are the most popular.
    const std::uint32_t one = dice_.below(department.families);
    const std::uint32_t other = dice_.below(department.families);
    const ProductId starter = department.first + 2 * std::min(one, other);
    return kind < kWantsStarter ? starter : starter + 1;
  }

  const Department& departmentOn(std::uint32_t day) {
    if (dice_.happens(kStaysWithTaste)) {
      const Department& department = *taste_[drawn(taste_, day)];
      if (inSeason(department, day)) return department;
    }
    return *all_[drawn(all_, day)];
  }

  std::uint32_t drawn(const std::vector<const Department*>& departments, std::uint32_t day) {
    DepartmentSums sums;
    for (const Department* const department : departments)
      sums.add(department->share * department->season[months_[day]]);
    return dice_.place(sums.view());
  }

  // Out of season even those who like a department seldom think of it.
  bool inSeason(const Department& department, std::uint32_t day) {
    return dice_.happens(department.season[months_[day]]);
  }

  // Puts the product into the basket, unless it is there, the basket is full, or the customer has
  // the starter already; then perhaps its companion.
  void take(ProductId id, std::uint32_t day) {
    const Product& taken = product(id);
    if (basket_.size() == kMostItems || holds(id)) return;
    if (taken.refill) {
      if (dueOf(*taken.refill) != nullptr) return;
      due_.push_back({*taken.refill, 0});
      renew(due_.back(), day);
    }
    basket_.push_back(id);
    if (Due* const due = dueOf(id)) renew(*due, day);
    if (taken.companion && dice_.happens(kTakesCompanion)) take(*taken.companion, day);
  }

  bool holds(ProductId id) const {
    return std::find(basket_.begin(), basket_.end(), id) != basket_.end();
  }

  Due* dueOf(ProductId refill) {
    const auto found = std::find_if(due_.begin(), due_.end(),
                                    [refill](const Due& due) { return due.refill == refill; });
    return found == due_.end() ? nullptr : &*found;
  }

  // A refill lasts its days, give or take three.
  void renew(Due& due, std::uint32_t day) {
    const auto lasts = static_cast<std::uint32_t>(product(due.refill).refillDays);
    due.day = day + lasts - 3 + dice_.below(7);
  }

  const ShopCatalogue& catalogue_;
  std::span<const std::uint8_t> months_;
  Dice dice_;
  std::vector<const Department*> all_;
  std::vector<const Department*> taste_;
  std::vector<Habit> habits_;
  std::vector<Due> due_;  // of every starter that the customer has; each later than the last visit
  std::vector<ProductId> basket_;
  std::vector<Purchase> purchases_;
};

std::vector<std::uint8_t> monthsOf(const ShopOptions& options) {
  std::vector<std::uint8_t> months;
  const std::chrono::sys_days start(options.start);
  for (std::int32_t day = 0; day < options.days; ++day) {
    const std::chrono::year_month_day date(start + std::chrono::days(day));
    months.push_back(static_cast<std::uint8_t>(unsigned{date.month()} - 1));
  }
  return months;
}

}  // namespace

Shop::Shop(const ShopOptions& options)
    : catalogue_(options.products), seed_(options.seed), months_(monthsOf(options)) {
  assert(options.days >= kFewestDays && options.days <= kMostDays && options.start.ok());
}

std::vector<Purchase> Shop::customer(std::uint64_t number) const {
  return Visitor(catalogue_, months_, Dice(seed_, number)).purchases();
}

}  // namespace orbseq
