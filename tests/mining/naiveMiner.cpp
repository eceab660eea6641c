#include "tests/mining/naiveMiner.h"

#include <algorithm>
#include <random>
#include <set>

namespace orbseq::test {

namespace {

using Sets = std::vector<Items>;

std::string textOf(const Sets& sets) {
  std::string text;
  for (std::size_t k = 0; k < sets.size(); ++k) {
    if (k > 0) text += '|';
    for (std::size_t i = 0; i < sets[k].size(); ++i)
      text += (i > 0 ? " " : "") + std::to_string(sets[k][i]);
  }
  return text;
}

bool isAllowed(std::int32_t item, const MinerOptions& options) {
  const auto has = [item](const Items& items) {
    return std::find(items.begin(), items.end(), item) != items.end();
  };
  return !has(options.exclude) && (options.include.empty() || has(options.include));
}

// Collects every sequence that one customer holds, by choosing baskets and subsets of them.
class Collector {
 public:
  Collector(const Customer& customer, const MinerOptions& options)
      : customer_(customer), options_(options) {
    choose(0, 0.0, 0.0, 0);
  }
  const std::set<std::string>& found() const { return found_; }

 private:
  void choose(std::size_t from, double begin, double last, std::int32_t used) {
    if (!sets_.empty()) found_.insert(textOf(sets_));
    if (static_cast<std::int32_t>(sets_.size()) == options_.maxSets) return;
    for (std::size_t k = from; k < customer_.size(); ++k) {
      const double time = customer_[k].time;
      if (!sets_.empty() && (time - last < options_.minGap || time - last > options_.maxGap ||
                             time - begin > options_.maxSpan))
        continue;
      Items allowed;
      for (const std::int32_t item : customer_[k].items)
        if (isAllowed(item, options_)) allowed.push_back(item);
      std::sort(allowed.begin(), allowed.end());
      allowed.erase(std::unique(allowed.begin(), allowed.end()), allowed.end());
      for (std::uint32_t mask = 1; mask < 1U << allowed.size(); ++mask) {
        Items subset;
        for (std::size_t i = 0; i < allowed.size(); ++i)
          if ((mask >> i) & 1U) subset.push_back(allowed[i]);
        const auto size = static_cast<std::int32_t>(subset.size());
        if (size > options_.maxItemsPerSet || used + size > options_.maxItems) continue;
        const bool isFirst = sets_.empty();
        sets_.push_back(subset);
        choose(k + 1, isFirst ? time : begin, time, used + size);
        sets_.pop_back();
      }
    }
  }

  const Customer& customer_;
  const MinerOptions& options_;
  Sets sets_;
  std::set<std::string> found_;
};

}  // namespace

SequenceDatabase databaseOf(const std::vector<Customer>& customers) {
  SequenceDatabase database;
  for (const Customer& customer : customers) {
    database.beginCustomer();
    for (const Basket& basket : customer) {
      database.beginSet(basket.time);
      for (const std::int32_t item : basket.items) database.addItem(item);
    }
  }
  database.finish();
  return database;
}

Supports naivelyMined(const std::vector<Customer>& customers, const MinerOptions& options) {
  Supports supports;
  for (const Customer& customer : customers) {
    const Collector collector(customer, options);
    for (const std::string& sequence : collector.found()) ++supports[sequence];
  }
  std::erase_if(supports, [&](const auto& entry) { return entry.second < options.minCustomers; });
  return supports;
}

Supports supportsOf(const PatternTree& tree) {
  Supports supports;
  tree.forEach([&supports](const Pattern& pattern) {
    Sets sets;
    for (std::size_t k = 0; k < pattern.setBegins.size(); ++k) {
      const auto set = pattern.set(k);
      sets.emplace_back(set.begin(), set.end());
    }
    const auto [entry, isNew] = supports.emplace(textOf(sets), pattern.count);
    if (!isNew) entry->second = -1;
  });
  return supports;
}

std::vector<Customer> randomCustomers(std::uint32_t seed, int customers, int items, int most,
                                      int width) {
  std::mt19937 random(seed);
  const auto draw = [&random](int from, int to) {
    return from + static_cast<int>(random() % static_cast<std::uint32_t>(to - from + 1));
  };
  std::vector<Customer> all;
  for (int c = 0; c < customers; ++c) {
    Customer customer;
    double time = 0.0;
    for (int k = draw(0, most); k > 0; --k) {
      time += draw(0, 3);
      Basket basket{time, {}};
      for (int i = draw(0, width); i > 0; --i) basket.items.push_back(draw(1, items));
      customer.push_back(basket);
    }
    all.push_back(customer);
  }
  return all;
}

}  // namespace orbseq::test
