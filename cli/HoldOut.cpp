#include "cli/HoldOut.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace orbseq {

namespace {

// The time after which baskets are held back.
double cutOf(const SequenceDatabase& log, double share) {
  double first = std::numeric_limits<double>::infinity();
  double last = -std::numeric_limits<double>::infinity();
  for (std::size_t set = 0; set < log.sets(); ++set) {
    first = std::min(first, log.time(set));
    last = std::max(last, log.time(set));
  }
  return std::lerp(last, first, share);
}

std::vector<std::int32_t> itemsOf(const SequenceDatabase& log, std::size_t first,
                                  std::size_t last) {
  std::vector<std::int32_t> items;
  for (std::size_t set = first; set < last; ++set)
    items.insert(items.end(), log.items(set).begin(), log.items(set).end());
  std::sort(items.begin(), items.end());
  items.erase(std::unique(items.begin(), items.end()), items.end());
  return items;
}

void addSeen(SequenceDatabase& seen, const SequenceDatabase& log, std::size_t first,
             std::size_t last) {
  seen.beginCustomer();
  for (std::size_t set = first; set < last; ++set) {
    seen.beginSet(log.time(set));
    for (const std::int32_t item : log.items(set)) seen.addItem(item);
  }
}

}  // namespace

std::optional<double> holdBackOf(const std::string& text) {
  if (text == "last") return 0.0;
  double share = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), share);
  const bool isShare =
      error == std::errc() && end == text.data() + text.size() && share > 0.0 && share < 1.0;
  return isShare ? std::optional(share) : std::nullopt;
}

HoldOut holdOut(const SequenceDatabase& log, double share) {
  HoldOut parts;
  const double cut = share > 0.0 ? cutOf(log, share) : 0.0;
  for (std::size_t customer = 0; customer < log.customers(); ++customer) {
    const std::size_t first = log.firstSet(customer);
    const std::size_t last = log.firstSet(customer + 1);
    std::size_t end = first;  // of what is seen
    if (share > 0.0)
      while (end < last && log.time(end) <= cut) ++end;
    else if (last > first)
      end = std::max(last - 1, first + 1);
    if (end == first) continue;
    addSeen(parts.seen, log, first, end);
    if (end < last) parts.cases.push_back({customer, first, end, itemsOf(log, end, last)});
  }
  parts.seen.finish();
  return parts;
}

}  // namespace orbseq
