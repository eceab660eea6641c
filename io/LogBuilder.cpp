#include "io/LogBuilder.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <tuple>
#include <utility>

#include "common/guards.h"

namespace orbseq {

namespace {

void checkSize(std::string_view text, const char* what) {
  if (text.size() > LogBuilder::kMostTextBytes && guarded("log.text bytes"))
    throw LogBuilder::Full(std::string("the ") + what + " is longer than " +
                           std::to_string(LogBuilder::kMostTextBytes) + " bytes, the limit");
}

// A text that names no item, and the row of a basket without one.
constexpr std::int32_t kUnknown = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kNoItem = std::numeric_limits<std::int64_t>::min();

}  // namespace

std::uint32_t LogBuilder::customerOf(std::string_view name) {
  const auto known = customerIndex_.find(name);
  if (known != customerIndex_.end()) return known->second;
  const auto index = static_cast<std::uint32_t>(customers_.size());
  if (customers_.size() == std::numeric_limits<std::uint32_t>::max())
    throw std::length_error("a log of more than 4294967295 customers cannot be read");
  customers_.emplace_back(name);
  customerIndex_.emplace(name, index);
  return index;
}

std::int64_t LogBuilder::textCodeOf(std::string_view item) {
  hasText_ = true;
  const auto known = textIndex_.find(item);
  if (known != textIndex_.end()) return -1 - std::int64_t{known->second};
  if (texts_.size() == options_.mostTexts && guarded("log.texts"))
    throw Full("more than " + std::to_string(options_.mostTexts) +
               " different items are texts, the limit");
  checkSize(item, "item");
  const auto index = static_cast<std::uint32_t>(texts_.size());
  texts_.emplace_back(item);
  textIndex_.emplace(item, index);
  return -1 - std::int64_t{index};
}

bool LogBuilder::accepts(std::string_view item) const noexcept {
  return options_.known != nullptr || options_.items != ItemKind::kInteger ||
         ItemNames::numberOf(item).has_value();
}

std::int64_t LogBuilder::codeOf(std::string_view item) {
  if (options_.known == nullptr && options_.items != ItemKind::kText)
    if (const auto number = ItemNames::numberOf(item)) return *number;
  return textCodeOf(item);
}

void LogBuilder::addRow(std::string_view customer, double time, std::string_view item) {
  // Rows of one customer stand together as a rule.
  if (rows_.empty() || customers_[rows_.back().customer] != customer)
    customer_ = customerOf(customer);
  else
    customer_ = rows_.back().customer;
  rows_.push_back({customer_, 0, time, codeOf(item)});
}

void LogBuilder::describe(std::string_view item, std::string_view description) {
  if (description.empty() || descriptions_.find(item) != descriptions_.end()) return;
  checkSize(description, "description");
  descriptions_.emplace(item, description);
}

bool LogBuilder::beginCustomer(std::string_view customer) {
  const std::size_t before = customers_.size();
  customer_ = customerOf(customer);
  return customers_.size() > before;
}

void LogBuilder::beginBasket(double time) {
  ++basket_;
  time_ = time;
  if (options_.known != nullptr) rows_.push_back({customer_, basket_, time_, kNoItem});
}

void LogBuilder::addItem(std::string_view item) {
  rows_.push_back({customer_, basket_, time_, codeOf(item)});
}

void LogBuilder::addItem(std::int32_t item) { rows_.push_back({customer_, basket_, time_, item}); }

// By customer and time, rows of one time in the order in which they came.
void LogBuilder::order() {
  if (options_.basket)
    for (Row& row : rows_) row.time = options_.basket->beginOf(row.time);
  const auto isEarlier = [](const Row& a, const Row& b) {
    return std::tie(a.customer, a.time) < std::tie(b.customer, b.time);
  };
  if (!std::is_sorted(rows_.begin(), rows_.end(), isEarlier))
    std::stable_sort(rows_.begin(), rows_.end(), isEarlier);
}

// The number of each text, once integers have become texts as well where there is any text.
std::vector<std::int32_t> LogBuilder::numberItems(TransactionLog& log) {
  if (!hasText_ && options_.items != ItemKind::kText) return {};
  for (Row& row : rows_)
    if (row.code >= 0) row.code = textCodeOf(std::to_string(row.code));
  std::vector<std::uint32_t> byText(texts_.size());
  for (std::uint32_t i = 0; i < byText.size(); ++i) byText[i] = i;
  std::sort(byText.begin(), byText.end(),
            [this](std::uint32_t a, std::uint32_t b) { return texts_[a] < texts_[b]; });
  std::vector<std::int32_t> numbers(texts_.size());
  for (std::size_t i = 0; i < byText.size(); ++i) {
    numbers[byText[i]] = static_cast<std::int32_t>(i + 1);
    log.labels.emplace_hint(log.labels.end(), static_cast<std::int32_t>(i + 1), texts_[byText[i]]);
  }
  return numbers;
}

std::vector<std::int32_t> LogBuilder::lookItemsUp() const {
  std::vector<std::int32_t> numbers(texts_.size(), kUnknown);
  for (std::size_t i = 0; i < texts_.size(); ++i)
    numbers[i] = options_.known->find(texts_[i]).value_or(kUnknown);
  return numbers;
}

void LogBuilder::addLabels(TransactionLog& log, const std::vector<std::int32_t>& numbers) const {
  for (const auto& [item, description] : descriptions_) {
    std::string label = item;
    label.append(" ").append(description);
    if (numbers.empty()) {
      if (const auto integer = ItemNames::numberOf(item)) log.labels[*integer] = std::move(label);
      continue;
    }
    const auto known = textIndex_.find(item);
    if (known != textIndex_.end()) log.labels[numbers[known->second]] = std::move(label);
  }
}

void LogBuilder::fill(TransactionLog& log, const std::vector<std::int32_t>& numbers) const {
  constexpr std::uint32_t kNobody = std::numeric_limits<std::uint32_t>::max();
  if (options_.known != nullptr) log.database.keepEmptySets();
  std::uint32_t customer = kNobody;
  std::uint32_t basket = 0;
  double time = 0.0;
  const auto goOnTo = [&](std::uint32_t next) {
    while (customer != next) {
      log.database.beginCustomer();
      customer = customer == kNobody ? 0 : customer + 1;
    }
  };
  for (const Row& row : rows_) {
    const bool isSameCustomer = customer == row.customer;
    goOnTo(row.customer);
    const bool isSameBasket =
        options_.basket ? row.time == time : row.basket == basket && row.time == time;
    if (!isSameCustomer || !isSameBasket) log.database.beginSet(row.time);
    basket = row.basket;
    time = row.time;
    if (row.code == kNoItem) continue;
    const std::int32_t item = row.code >= 0 ? static_cast<std::int32_t>(row.code)
                                            : numbers[static_cast<std::size_t>(-1 - row.code)];
    if (item == kUnknown)
      log.unknown.count(texts_[static_cast<std::size_t>(-1 - row.code)]);
    else
      log.database.addItem(item);
  }
  if (!customers_.empty()) goOnTo(static_cast<std::uint32_t>(customers_.size() - 1));
  log.database.finish();
}

TransactionLog LogBuilder::finish() {
  TransactionLog log;
  if (options_.known == nullptr && options_.items == ItemKind::kAuto && hasText_)
    log.textItem = texts_.front();
  order();
  const std::vector<std::int32_t> numbers =
      options_.known != nullptr ? lookItemsUp() : numberItems(log);
  if (options_.known == nullptr) addLabels(log, numbers);
  fill(log, numbers);
  log.customers = std::move(customers_);
  return log;
}

}  // namespace orbseq
