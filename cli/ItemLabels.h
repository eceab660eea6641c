// The labels of a model's items, ready for one form of output.
//
// Every label is put into the form once, at construction; the map may go afterwards.
// Threads: any number of readers.

#ifndef CLI_ITEMLABELS_H_
#define CLI_ITEMLABELS_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

#include "io/Model.h"

namespace orbseq {

class ItemLabels {
 public:
  // The form: a function of the label's plain text.
  using Form = std::string (*)(std::string_view label);

  ItemLabels(const ItemLabelMap& labels, Form form);

  // The label in the form; for an item without one, the form of the empty text.
  const std::string& of(std::int32_t item) const;

  const std::unordered_map<std::int32_t, std::string>& all() const noexcept { return labels_; }

 private:
  std::unordered_map<std::int32_t, std::string> labels_;
  std::string none_;
};

}  // namespace orbseq

#endif  // CLI_ITEMLABELS_H_
