// Finds the item that a person means: by number, by label, or by how the label begins.

#ifndef CLI_ITEMFINDER_H_
#define CLI_ITEMFINDER_H_

#include <cstdint>
#include <string>
#include <vector>

#include "io/Model.h"

namespace orbseq {

class ItemFinder {
 public:
  // The model must outlive the finder.
  explicit ItemFinder(const Model& model) : model_(model) {}

  // A number that is an item of the lattice is that item; else the one item of exactly that label;
  // else the one item whose label begins so. Throws UsageError, naming `option`, for anything else.
  std::int32_t find(const char* option, const std::string& text) const;
  std::vector<std::int32_t> findAll(const char* option,
                                    const std::vector<std::string>& texts) const;

 private:
  bool isItem(std::int32_t item) const;

  const Model& model_;
};

}  // namespace orbseq

#endif  // CLI_ITEMFINDER_H_
