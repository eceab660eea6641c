// Mined sequences with their supports, as a tree of prefixes.
//
// Shape. Nodes in pre-order: a node's depth is the number of items of its sequence, which is that
// of its parent - the nearest node before it that is one less deep - and one more item, either in a
// new last set or in the last set. 12 bytes a sequence.
//
// Threads: any number of readers, or one writer.

#ifndef MINING_PATTERNTREE_H_
#define MINING_PATTERNTREE_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace orbseq {

struct PatternNode {
  std::int32_t item = 0;
  std::int32_t count = 0;  // customers that hold the sequence
  std::int16_t depth = 0;  // items, 1 or more
  bool opensSet = false;   // the item is a new last set; else it joins the last one
};

// A sequence while the tree is walked.
struct Pattern {
  std::span<const std::int32_t> items;      // set after set
  std::span<const std::int32_t> setBegins;  // index of each set's first item
  std::int32_t count = 0;

  std::span<const std::int32_t> set(std::size_t k) const noexcept {
    const auto begin = static_cast<std::size_t>(setBegins[k]);
    const std::size_t end =
        k + 1 < setBegins.size() ? static_cast<std::size_t>(setBegins[k + 1]) : items.size();
    return items.subspan(begin, end - begin);
  }
};

class PatternTree {
 public:
  std::vector<PatternNode> nodes;

  // Calls `each` with every sequence, in the order of the nodes; the pattern is valid during the
  // call.
  template <class Each>
  void forEach(Each each) const {
    std::vector<std::int32_t> items;
    std::vector<std::int32_t> setBegins;
    for (const PatternNode& node : nodes) {
      const auto prefix = static_cast<std::size_t>(node.depth - 1);
      items.resize(prefix);
      while (!setBegins.empty() && static_cast<std::size_t>(setBegins.back()) >= prefix)
        setBegins.pop_back();
      if (node.opensSet) setBegins.push_back(static_cast<std::int32_t>(prefix));
      items.push_back(node.item);
      each(Pattern{items, setBegins, node.count});
    }
  }
};

}  // namespace orbseq

#endif  // MINING_PATTERNTREE_H_
