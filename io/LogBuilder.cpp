#include "io/LogBuilder.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <stdexcept>
#include <system_error>
#include <tuple>
#include <utility>

namespace orbseq {

namespace {

constexpr std::int32_t kUnknown = std::numeric_limits<std::int32_t>::min();

// 0 .. 2147483647 without leading zeros.
std::optional<std::int32_t> integerItemOf(std::string_view text) noexcept {
  if (text.empty() || (text.size() > 1 && text.front() == '0')) return std::nullopt;
  std::int32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  const bool isItem =
      error == std::errc() && end == text.data() + text.size() && text.front() != '-';
  return isItem ? std::optional(value) : std::nullopt;
}

// Items by their labels and by the labels' first words; a word of several labels is no name.
std::unordered_map<std::string, std::int32_t> namesOf(const ItemLabelMap& labels) {
  std::unordered_map<std::string, std::int32_t> names;
  for (const auto& [item, label] : labels) {
    const std::string word = label.substr(0, label.find(' '));
    const auto [entry, isNew] = names.emplace(word, item);
    if (!isNew && entry->second != item) entry->second = kUnknown;
  }
  for (const auto& [item, label] : labels) names[label] = item;
  return names;
}

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
  const auto index = static_cast<std::uint32_t>(texts_.size());
  texts_.emplace_back(item);
  textIndex_.emplace(item, index);
  return -1 - std::int64_t{index};
}

std::optional<std::int64_t> LogBuilder::codeOf(std::string_view item) {
  if (options_.known != nullptr) return textCodeOf(item);
  if (options_.items != ItemKind::kText) {
    if (const auto integer = integerItemOf(item)) return *integer;
    if (options_.items == ItemKind::kInteger) return std::nullopt;
  }
  return textCodeOf(item);
}

bool LogBuilder::addRow(std::string_view customer, double time, std::string_view item) {
  const auto code = codeOf(item);
  if (!code) return false;
  // Rows of one customer stand together as a rule.
  if (rows_.empty() || customers_[rows_.back().customer] != customer)
    customer_ = customerOf(customer);
  rows_.push_back({customer_, 0, time, *code});
  return true;
}

void LogBuilder::describe(std::string_view item, std::string_view description) {
  if (description.empty() || descriptions_.find(item) != descriptions_.end()) return;
  descriptions_.emplace(item, description);
}

void LogBuilder::beginCustomer(std::string_view customer) { customer_ = customerOf(customer); }

void LogBuilder::beginBasket(double time) {
  ++basket_;
  time_ = time;
}

bool LogBuilder::addItem(std::string_view item) {
  const auto code = codeOf(item);
  if (code) rows_.push_back({customer_, basket_, time_, *code});
  return code.has_value();
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
  if (!hasText_) return {};
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
  const auto names = namesOf(*options_.known);
  std::vector<std::int32_t> numbers(texts_.size(), kUnknown);
  for (std::size_t i = 0; i < texts_.size(); ++i) {
    const auto name = names.find(texts_[i]);
    if (name != names.end() && name->second != kUnknown)
      numbers[i] = name->second;
    else if (const auto integer = integerItemOf(texts_[i]))
      numbers[i] = *integer;
  }
  return numbers;
}

void LogBuilder::addLabels(TransactionLog& log, const std::vector<std::int32_t>& numbers) const {
  for (const auto& [item, description] : descriptions_) {
    std::string label = item;
    label.append(" ").append(description);
    if (numbers.empty()) {
      if (const auto integer = integerItemOf(item)) log.labels[*integer] = std::move(label);
      continue;
    }
    const auto known = textIndex_.find(item);
    if (known != textIndex_.end()) log.labels[numbers[known->second]] = std::move(label);
  }
}

void LogBuilder::fill(TransactionLog& log, const std::vector<std::int32_t>& numbers) const {
  constexpr std::uint32_t kNobody = std::numeric_limits<std::uint32_t>::max();
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
    const std::int32_t item = row.code >= 0 ? static_cast<std::int32_t>(row.code)
                                            : numbers[static_cast<std::size_t>(-1 - row.code)];
    if (item == kUnknown)
      ++log.unknownItems;
    else
      log.database.addItem(item);
  }
  if (!customers_.empty()) goOnTo(static_cast<std::uint32_t>(customers_.size() - 1));
  log.database.finish();
}

TransactionLog LogBuilder::finish() {
  TransactionLog log;
  order();
  const std::vector<std::int32_t> numbers =
      options_.known != nullptr ? lookItemsUp() : numberItems(log);
  if (options_.known == nullptr) addLabels(log, numbers);
  fill(log, numbers);
  log.customers = std::move(customers_);
  return log;
}

}  // namespace orbseq
