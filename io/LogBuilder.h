// Puts a log together from what a reader finds, row by row or basket by basket.
//
// Rows may come in any order; those of one customer and time are one basket, or of one period where
// one is given. Baskets that come as such stay apart, whatever their times, unless a period is
// given.
//
// With labels given, items are looked up instead of numbered: an item's text is its label, the
// label's first word where that is no other's, or else its number. Other texts are counted and left
// out.
//
// Memory: 24 bytes an item occurrence, and each different text once.
// Threads: one at a time.

#ifndef IO_LOGBUILDER_H_
#define IO_LOGBUILDER_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "io/TransactionLog.h"
#include "io/logTime.h"

namespace orbseq {

enum class ItemKind { kAuto, kInteger, kText };

class LogBuilder {
 public:
  struct Options {
    ItemKind items = ItemKind::kAuto;
    std::optional<Period> basket;
    const ItemLabelMap* known = nullptr;  // look items up in these labels; null: number them
  };

  explicit LogBuilder(const Options& options) : options_(options) {}

  // A row of a long log. With ItemKind::kInteger, false for an item that is no such integer.
  bool addRow(std::string_view customer, double time, std::string_view item);
  // A description of an item; the first one stands.
  void describe(std::string_view item, std::string_view description);

  // A customer with baskets. A customer that came before goes on.
  void beginCustomer(std::string_view customer);
  void beginBasket(double time);
  bool addItem(std::string_view item);
  void addItem(std::int32_t item);

  // The log so far; the builder is used up.
  TransactionLog finish();

 private:
  struct Row {
    std::uint32_t customer;
    std::uint32_t basket;  // number of a basket that came as such; 0: by time
    double time;
    std::int64_t code;  // an integer item, or -1 - the index of a text
  };
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const noexcept {
      return std::hash<std::string_view>()(text);
    }
  };
  using Index = std::unordered_map<std::string, std::uint32_t, Hash, std::equal_to<>>;

  std::uint32_t customerOf(std::string_view name);
  std::optional<std::int64_t> codeOf(std::string_view item);
  std::int64_t textCodeOf(std::string_view item);
  void order();
  std::vector<std::int32_t> numberItems(TransactionLog& log);
  std::vector<std::int32_t> lookItemsUp() const;
  void addLabels(TransactionLog& log, const std::vector<std::int32_t>& numbers) const;
  void fill(TransactionLog& log, const std::vector<std::int32_t>& numbers) const;

  Options options_;
  std::vector<Row> rows_;
  std::vector<std::string> customers_;
  Index customerIndex_;
  std::vector<std::string> texts_;
  Index textIndex_;
  std::unordered_map<std::string, std::string, Hash, std::equal_to<>> descriptions_;
  std::uint32_t customer_ = 0;  // of the baskets that come
  std::uint32_t basket_ = 0;
  double time_ = 0.0;
  bool hasText_ = false;
};

}  // namespace orbseq

#endif  // IO_LOGBUILDER_H_
