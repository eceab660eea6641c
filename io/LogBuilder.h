// Puts a log together from what a reader finds, row by row or basket by basket.
//
// Rows may come in any order; those of one customer and time are one basket, or of one period where
// one is given. Baskets that come as such stay apart, whatever their times, unless a period is
// given.
//
// With names given, items are looked up in a model instead of numbered (io/ItemNames.h). Other
// texts are counted and left out; a basket that holds nothing else stays, without items, so that a
// history is answered as one whose items have numbers that the model does not know.
//
// Memory: 24 bytes an item occurrence, and each different text once.
// Threads: one at a time. Errors: Full when a text, or their number, is beyond a limit.

#ifndef IO_LOGBUILDER_H_
#define IO_LOGBUILDER_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "common/Limits.h"
#include "io/ItemNames.h"
#include "io/TextMap.h"
#include "io/TransactionLog.h"
#include "io/logTime.h"

namespace orbseq {

enum class ItemKind { kAuto, kInteger, kText };

class LogBuilder {
 public:
  struct Options {
    ItemKind items = ItemKind::kAuto;
    std::optional<Period> basket;
    const ItemNames* known = nullptr;           // look items up; null: number them
    std::size_t mostTexts = LogLimits::kTexts;  // different items that are texts
  };

  static constexpr std::size_t kMostTextBytes = LogLimits::kTextBytes;  // of an item, a description

  // A limit was hit: what it was, without a place. The builder can only be destroyed.
  class Full : public std::runtime_error {
   public:
    using std::runtime_error::runtime_error;
  };

  explicit LogBuilder(const Options& options) : options_(options) {}

  // Whether the text can be an item: with ItemKind::kInteger, an integer alone.
  bool accepts(std::string_view item) const noexcept;

  // A row of a long log. Requires that the item is accepted.
  void addRow(std::string_view customer, double time, std::string_view item);
  // A description of an item; the first one stands.
  void describe(std::string_view item, std::string_view description);

  // A customer with baskets. A customer that came before goes on; answers whether it is new.
  bool beginCustomer(std::string_view customer);
  void beginBasket(double time);
  void addItem(std::string_view item);  // requires that it is accepted
  void addItem(std::int32_t item);

  // The log so far; the builder is used up.
  TransactionLog finish();

 private:
  struct Row {
    std::uint32_t customer;
    std::uint32_t basket;  // number of a basket that came as such; 0: by time
    double time;
    std::int64_t code;  // an integer item, -1 - the index of a text, or kNoItem
  };

  std::uint32_t customerOf(std::string_view name);
  std::int64_t codeOf(std::string_view item);
  std::int64_t textCodeOf(std::string_view item);
  void order();
  std::vector<std::int32_t> numberItems(TransactionLog& log);
  std::vector<std::int32_t> lookItemsUp() const;
  void addLabels(TransactionLog& log, const std::vector<std::int32_t>& numbers) const;
  void fill(TransactionLog& log, const std::vector<std::int32_t>& numbers) const;

  Options options_;
  std::vector<Row> rows_;
  std::vector<std::string> customers_;
  TextMap<std::uint32_t> customerIndex_;
  std::vector<std::string> texts_;
  TextMap<std::uint32_t> textIndex_;
  TextMap<std::string> descriptions_;
  std::uint32_t customer_ = 0;  // of the baskets that come
  std::uint32_t basket_ = 0;
  double time_ = 0.0;
  bool hasText_ = false;
};

}  // namespace orbseq

#endif  // IO_LOGBUILDER_H_
