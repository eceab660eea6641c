// Finds the item that a text names, in a model's labels.
//
// A text is a whole label, or else a label's first word, or else an item's number: 0 to 2147483647
// without leading zeros. A label or word that several items share names none of them.
//
// Threads: any number of readers.

#ifndef IO_ITEMNAMES_H_
#define IO_ITEMNAMES_H_

#include <cstdint>
#include <optional>
#include <string_view>

#include "io/Model.h"
#include "io/TextMap.h"

namespace orbseq {

class ItemNames {
 public:
  ItemNames() = default;  // numbers alone
  explicit ItemNames(const ItemLabelMap& labels);

  std::optional<std::int32_t> find(std::string_view text) const;

  // The text as an item's number.
  static std::optional<std::int32_t> numberOf(std::string_view text) noexcept;

 private:
  using Names = TextMap<std::optional<std::int32_t>>;  // nothing: several items
  static void add(Names& names, std::string_view name, std::int32_t item);

  Names labels_;
  Names words_;
};

}  // namespace orbseq

#endif  // IO_ITEMNAMES_H_
