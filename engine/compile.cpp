#include "engine/compile.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>
#include <stdexcept>
#include <unordered_map>

#include "engine/compiledForm.h"
#include "lattice/SequenceDictionary.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/SequenceCounter.h"

namespace orbseq::engine {

namespace {

using SEQUENCE_NAMESPACE_800::HashtableSQPair;
using SEQUENCE_NAMESPACE_800::ISQCPair;
using SEQUENCE_NAMESPACE_800::NTSequence;
using SEQUENCE_NAMESPACE_800::SequenceCounter;
using SEQUENCE_NAMESPACE_800::SequenceDictionary;

constexpr std::int32_t kJoinsFirstSet = 0;  // adjacency codes
constexpr std::int32_t kOpensFirstSet = 1;
constexpr std::int32_t kSmallLattice = 2;

std::uint32_t counted(std::size_t count) {
  if (count >= kNone) throw std::length_error("a compiled lattice of more than 2^32 - 2 parts");
  return static_cast<std::uint32_t>(count);
}

std::uint32_t countedNodes(std::size_t count) {
  if (count > kMostNodes) throw std::length_error("a compiled lattice of more than 2^30 - 1 nodes");
  return static_cast<std::uint32_t>(count);
}

// Links with items by their own numbers until all items are known.
struct RawClimb {
  std::int32_t item;
  NodeId node;  // at last with its marks
};
struct RawProposal {
  std::int32_t item;
  std::int32_t count;
};

// What `put` lays down as the links of an image, once their items have ids.
static_assert(sizeof(RawClimb) == sizeof(Climb) && sizeof(RawProposal) == sizeof(Proposal));

// An owned image.
class Block final : public CompiledLattice::Storage {
 public:
  explicit Block(std::size_t bytes) : words_((bytes + 7) / 8), bytes_(bytes) {}
  std::byte* data() noexcept { return reinterpret_cast<std::byte*>(words_.data()); }
  std::span<const std::byte> bytes() const noexcept override {
    return {reinterpret_cast<const std::byte*>(words_.data()), bytes_};
  }

 private:
  std::vector<std::uint64_t> words_;  // zeros where nothing is written
  std::size_t bytes_;
};

class Compiler {
 public:
  explicit Compiler(const SequenceDictionary& dictionary)
      : dictionary_(dictionary), largest_(dictionary.LargestSequence()) {
    const NTSequence empty;
    const SequenceCounter* const all = dictionary.getDescriptor(&empty);
    header_.customers = all == nullptr ? 0 : all->getCount();
  }

  CompiledLattice run() {
    addSingles();
    for (std::size_t size = 1; size < Header::kLevels; ++size) {
      gatherNext(size);
      for (const ISQCPair* entry : level_) addNode(*entry, size);
      finishLevel(size);
    }
    nodes_.push_back({0, counted(climbs_.size()), counted(climbs_.size()),
                      counted(proposals_.size()), counted(proposals_.size())});
    finishClimbs();
    sortOut();
    return image();
  }

 private:
  const HashtableSQPair* table(std::size_t size) const noexcept {
    return dictionary_.getTable(static_cast<std::int32_t>(size));
  }

  // The first level by item; which items are known, and which have a node.
  void addSingles() {
    header_.levels[1] = 0;
    if (const HashtableSQPair* const singles = table(1))
      for (const ISQCPair& entry : *singles) {
        if (entry.key->size() != 1) continue;
        const std::int32_t item = entry.key->items().front();
        items_.push_back({item, kNone, entry.value == nullptr ? 0 : entry.value->getCount(), 0});
        if (entry.value != nullptr) level_.push_back(&entry);
      }
    std::sort(level_.begin(), level_.end(), [](const ISQCPair* a, const ISQCPair* b) {
      return a->key->items().front() < b->key->items().front();
    });
    std::sort(items_.begin(), items_.end(),
              [](const Item& a, const Item& b) { return a.number < b.number; });
    std::size_t item = 0;
    for (std::size_t node = 0; node < level_.size(); ++node) {
      while (items_[item].number != level_[node]->key->items().front()) ++item;
      items_[item].node = static_cast<NodeId>(node);
    }
    singles_ = items_;
  }

  // The entries of the next level, which get their places as climbs reach them.
  void gatherNext(std::size_t size) {
    places_.clear();
    next_.clear();
    const HashtableSQPair* const longer = table(size + 1);
    if (longer == nullptr || size + 1 >= Header::kLevels) return;
    places_.reserve(static_cast<std::size_t>(longer->getSize()));
    next_.reserve(static_cast<std::size_t>(longer->getSize()));
  }

  // What no climb reaches comes last, in the order of the table.
  void finishLevel(std::size_t size) {
    header_.levels[size + 1] = countedNodes(nodes_.size());
    const HashtableSQPair* const longer = table(size + 1);
    if (longer != nullptr && size + 1 < Header::kLevels)
      for (const ISQCPair& entry : *longer)
        if (entry.value != nullptr && entry.key->size() == static_cast<std::int32_t>(size + 1))
          placeOf(entry);
    level_.swap(next_);
  }

  std::uint32_t placeOf(const ISQCPair& entry) {
    const auto [place, isNew] = places_.emplace(&entry, counted(next_.size()));
    if (isNew) next_.push_back(&entry);
    return place->second;
  }

  // A link of the node at work that matters, and the sequence that it leads to.
  struct Link {
    SequenceCounter::AdjacentItem adjacent;
    bool climbs;
    bool proposes;
  };

  void addNode(const ISQCPair& entry, std::size_t size) {
    const NTSequence& key = *entry.key;
    const std::int32_t sets = key.getNSets();
    sets_.push_back(static_cast<std::uint8_t>(sets));
    links_.clear();
    longer_.clear();
    const bool canClimb =
        largest_ > kSmallLattice && key.size() < largest_ && key.size() + 1 < NTSequence::kMaxItems;
    const bool canPropose = header_.customers != 0 && entry.value->getCount() != 0;
    const auto* const adjacent = entry.value->getAdjacentItems();
    if (adjacent != nullptr && key.size() < NTSequence::kMaxItems)
      for (const auto& [item, code] : *adjacent) {
        const bool isInFront = canClimb && (code == kJoinsFirstSet || code == kOpensFirstSet);
        const bool isBehind = canPropose && (code == 2 * (sets - 1) || code == 2 * sets + 1);
        if ((!isInFront && !isBehind) || !key.isPosition(code)) continue;
        const Item* const single = findItem(singles_, item);
        const bool climbs = isInFront && single != nullptr;
        const bool proposes = isBehind && hasCause(single);
        if (!climbs && !proposes) continue;
        links_.push_back({{item, code}, climbs, proposes});
        longer_.emplace_back(key, item, code);
      }
    lookUp(size);
    appendRuns(*entry.value, sets, counted(nodes_.size()));
  }

  // Whether the item's count leaves a fraction: 0 customers that hold it alone do not.
  static bool hasCause(const Item* single) noexcept {
    return single == nullptr || single->node == kNone || single->count != 0;
  }

  void lookUp(std::size_t size) {
    found_.assign(longer_.size(), nullptr);
    if (const HashtableSQPair* const longer = table(size + 1))
      longer->getAll(longer_, found_.data());
  }

  // The four runs of a node, each in the order of the items, proposals by count after that.
  void appendRuns(const SequenceCounter& counter, std::int32_t sets, std::uint32_t id) {
    nodes_.push_back({counter.getCount(), 0, 0, 0, 0});
    const auto addClimbs = [&](std::int32_t code) {
      const std::uint32_t begin = counted(climbs_.size());
      for (std::size_t k = 0; k < links_.size(); ++k)
        if (links_[k].climbs && links_[k].adjacent.second == code && isCounted(k))
          climbs_.push_back({links_[k].adjacent.first, placeOf(*found_[k])});
      return begin;
    };
    const auto addProposals = [&](std::int32_t code) {
      const std::uint32_t begin = counted(proposals_.size());
      for (std::size_t k = 0; k < links_.size(); ++k)
        if (links_[k].proposes && links_[k].adjacent.second == code && isCounted(k))
          proposals_.push_back({links_[k].adjacent.first, found_[k]->value->getCount()});
      std::sort(proposals_.begin() + begin, proposals_.end(),
                [](const RawProposal& a, const RawProposal& b) {
                  return a.count != b.count ? a.count > b.count : a.item > b.item;
                });
      return begin;
    };
    Node& node = nodes_[id];
    node.climbs = addClimbs(kOpensFirstSet);
    node.joins = addClimbs(kJoinsFirstSet);
    node.proposals = addProposals(2 * (sets - 1));
    node.opens = addProposals(2 * sets + 1);
  }

  bool isCounted(std::size_t k) const noexcept {
    return found_[k] != nullptr && found_[k]->value != nullptr;
  }

  // Until here a climb names the place in its level. From the longest sequences down, since climbs
  // lead to longer ones: what each leads to; those that lead to no proposal are dropped.
  void finishClimbs() {
    std::vector<std::uint32_t> kinds(sets_.size());
    for (std::size_t size = Header::kLevels - 1; size > 0; --size)
      for (NodeId id = header_.levels[size]; id < header_.levels[size + 1]; ++id) {
        if (nodes_[id].proposals < nodes_[id].opens) kinds[id] |= kJoining;
        if (nodes_[id].opens < nodes_[id + 1].proposals) kinds[id] |= kOpening;
        header_.kinds |= kinds[id];
        for (std::uint32_t k = nodes_[id].climbs; k < nodes_[id + 1].climbs; ++k) {
          climbs_[k].node += header_.levels[size + 1];
          kinds[id] |= kinds[climbs_[k].node];
        }
      }
    std::size_t kept = 0;
    for (NodeId id = 0; id < sets_.size(); ++id) {
      const Node node = nodes_[id];
      nodes_[id].climbs = counted(kept);
      keepClimbs(node.climbs, node.joins, kinds, kept);
      nodes_[id].joins = counted(kept);
      keepClimbs(node.joins, nodes_[id + 1].climbs, kinds, kept);
    }
    nodes_.back().climbs = nodes_.back().joins = counted(kept);
    climbs_.resize(kept);
    markGrowth();
  }

  void keepClimbs(std::uint32_t begin, std::uint32_t end, const std::vector<std::uint32_t>& kinds,
                  std::size_t& kept) {
    for (std::uint32_t k = begin; k < end; ++k)
      if (const std::uint32_t leadsTo = kinds[climbs_[k].node]; leadsTo != 0)
        climbs_[kept++] = {climbs_[k].item, climbs_[k].node | leadsTo};
  }

  // What has climbs or proposals goes before what has none, level by level: a search touches the
  // former alone, and finds them closer together.
  void sortOut() {
    const NodeId count = counted(sets_.size());
    std::vector<NodeId> order(count);  // former numbers
    std::iota(order.begin(), order.end(), 0U);
    for (std::size_t size = 1; size < Header::kLevels; ++size)
      std::stable_partition(order.begin() + header_.levels[size],
                            order.begin() + header_.levels[size + 1], [this](NodeId id) {
                              return nodes_[id].climbs < nodes_[id + 1].climbs ||
                                     nodes_[id].proposals < nodes_[id + 1].proposals;
                            });
    std::vector<NodeId> renumbered(count);
    for (NodeId id = 0; id < count; ++id) renumbered[order[id]] = id;

    std::vector<Node> nodes;
    std::vector<std::uint8_t> sets;
    std::vector<RawClimb> climbs;
    std::vector<RawProposal> proposals;
    nodes.reserve(nodes_.size());
    sets.reserve(sets_.size());
    climbs.reserve(climbs_.size());
    proposals.reserve(proposals_.size());
    for (const NodeId id : order) {
      const Node& node = nodes_[id];
      const Node& next = nodes_[id + 1];
      const std::uint32_t climb = counted(climbs.size());
      const std::uint32_t proposal = counted(proposals.size());
      nodes.push_back({node.count, climb, climb + (node.joins - node.climbs), proposal,
                       proposal + (node.opens - node.proposals)});
      sets.push_back(sets_[id]);
      for (std::uint32_t k = node.climbs; k < next.climbs; ++k)
        climbs.push_back({climbs_[k].item, renumbered[climbs_[k].node & kMostNodes] |
                                               (climbs_[k].node & ~kMostNodes)});
      proposals.insert(proposals.end(), proposals_.begin() + node.proposals,
                       proposals_.begin() + next.proposals);
    }
    nodes.push_back(nodes_.back());
    nodes_.swap(nodes);
    sets_.swap(sets);
    climbs_.swap(climbs);
    proposals_.swap(proposals);
    for (Item& item : items_)
      if (item.node != kNone) item.node = renumbered[item.node];
  }

  void markGrowth() {
    for (NodeId id = counted(sets_.size()); id-- > 0;) {
      bool grows = false;
      for (std::uint32_t k = nodes_[id].climbs; k < nodes_[id + 1].climbs; ++k) {
        const Climb climb{0, climbs_[k].node};
        const bool joins = k >= nodes_[id].joins;
        if (joins) header_.hasJoins |= climb.marked & (kJoining | kOpening);
        const bool above = (sets_[climb.node()] & CompiledLattice::kGrowsAbove) != 0;
        grows = grows || ((climb.marked & kOpening) != 0 && (joins || above));
      }
      if (grows) sets_[id] |= CompiledLattice::kGrowsAbove;
    }
  }

  // Every item that a link or a stored single item names, by number.
  void gatherItems() {
    const auto byNumber = [](const Item& a, const Item& b) { return a.number < b.number; };
    std::vector<std::int32_t> named;
    for (const RawClimb& climb : climbs_) named.push_back(climb.item);
    for (const RawProposal& proposal : proposals_) named.push_back(proposal.item);
    std::sort(named.begin(), named.end());
    named.erase(std::unique(named.begin(), named.end()), named.end());
    std::size_t single = 0;
    for (const std::int32_t number : named) {
      while (single < singles_.size() && singles_[single].number < number) ++single;
      if (single == singles_.size() || singles_[single].number != number)
        items_.push_back({number, kNone, 0, kStranger});
    }
    std::sort(items_.begin(), items_.end(), byNumber);
    if (items_.size() > kMostItems)
      throw std::length_error("a compiled lattice of more than 2^26 - 1 items");
    for (RawClimb& climb : climbs_) climb.item = idOf(climb.item);
    for (RawProposal& proposal : proposals_) proposal.item = idOf(proposal.item);
    markItems();
  }

  // What a history's question needs each item for.
  void markItems() {
    const auto mark = [this](std::int32_t id, std::uint32_t marks) {
      items_[static_cast<ItemId>(id)].marks |= marks;
    };
    for (const RawClimb& climb : climbs_) mark(climb.item, marksOfClimb(climb.node));
    for (NodeId id = 0; id < sets_.size(); ++id)
      for (std::uint32_t k = nodes_[id].opens; k < nodes_[id + 1].proposals; ++k)
        mark(proposals_[k].item, kIsOpening);
    for (Item& item : items_) {
      if (item.node == kNone) continue;
      const Node* const node = &nodes_[item.node];
      std::uint32_t kinds = 0;
      for (std::uint32_t k = node[0].climbs; k < node[1].climbs; ++k) kinds |= climbs_[k].node;
      if (node[0].proposals < node[0].opens) kinds |= kJoining;
      if (node[0].opens < node[1].proposals) kinds |= kOpening;
      if ((kinds & kJoining) != 0) item.marks |= kStartsJoining;
      if ((kinds & kOpening) != 0) item.marks |= kStartsOpening;
    }
  }

  std::vector<ItemId> popularItems() const {
    std::vector<ItemId> popular;
    if (header_.customers == 0) return popular;
    const double customers = header_.customers;
    for (ItemId id = 0; id < items_.size(); ++id)
      if (items_[id].node != kNone) popular.push_back(id);
    std::sort(popular.begin(), popular.end(), [&](ItemId a, ItemId b) {
      const double shareOfA = items_[a].count / customers;
      const double shareOfB = items_[b].count / customers;
      return shareOfA != shareOfB ? shareOfA > shareOfB : a > b;
    });
    return popular;
  }

  // Numbers from the least item to the greatest, where that is not too many.
  std::uint32_t lookupSize() const noexcept {
    if (items_.empty()) return 0;
    const auto range =
        static_cast<std::uint64_t>(std::int64_t{items_.back().number} - items_.front().number + 1);
    return range <= std::max(CompiledLattice::kMostLookup,
                             CompiledLattice::kMostLookupForItem * items_.size())
               ? static_cast<std::uint32_t>(range)
               : 0;
  }

  // Requires an item that was gathered.
  std::int32_t idOf(std::int32_t number) const noexcept {
    return static_cast<std::int32_t>(findItem(items_, number) - items_.data());
  }

  CompiledLattice image() {
    gatherItems();
    const std::vector<ItemId> popular = popularItems();
    header_.magic = Header::kMagic;
    header_.version = Header::kVersion;
    header_.byteOrder = Header::kByteOrder;
    header_.nodes = counted(nodes_.size() - 1);
    header_.climbs = counted(climbs_.size());
    header_.proposals = counted(proposals_.size());
    header_.items = counted(items_.size());
    header_.popular = counted(popular.size());
    header_.lookup = lookupSize();
    header_.hasStrangers = items_.size() > singles_.size() ? 1 : 0;
    const Layout layout = layoutOf(header_);
    header_.bytes = layout.bytes;
    auto block = std::make_unique<Block>(layout.bytes);
    std::byte* const bytes = block->data();
    const auto put = [bytes](std::uint64_t offset, const auto& values) {
      if (!values.empty())
        std::memcpy(bytes + offset, values.data(), values.size() * sizeof values[0]);
    };
    put(layout.nodes, nodes_);
    put(layout.sets, sets_);
    put(layout.items, items_);
    put(layout.popular, popular);
    put(layout.climbs, climbs_);
    put(layout.proposals, proposals_);
    auto* const lookup = reinterpret_cast<std::uint32_t*>(bytes + layout.lookup);
    std::fill_n(lookup, header_.lookup, kNone);
    for (ItemId id = 0; header_.lookup > 0 && id < items_.size(); ++id)
      lookup[std::int64_t{items_[id].number} - items_.front().number] = id | items_[id].marks;
    std::memcpy(bytes, &header_, sizeof header_);
    header_.checksum = checksumOf(block->bytes());
    std::memcpy(bytes, &header_, sizeof header_);
    return CompiledLattice(std::move(block));
  }

  const SequenceDictionary& dictionary_;
  const std::int32_t largest_;
  Header header_{};
  std::vector<Node> nodes_;
  std::vector<std::uint8_t> sets_;
  std::vector<RawClimb> climbs_;
  std::vector<RawProposal> proposals_;
  std::vector<Item> items_;
  std::vector<Item> singles_;  // of items_, those stored alone

  std::vector<const ISQCPair*> level_;  // entries of the level at work, in the order of nodes
  std::vector<const ISQCPair*> next_;   // of the one above, as far as they have places
  std::unordered_map<const ISQCPair*, std::uint32_t> places_;
  std::vector<Link> links_;         // of the node at work
  std::vector<NTSequence> longer_;  // what each leads to
  std::vector<const ISQCPair*> found_;
};

}  // namespace

CompiledLattice compile(const SequenceDictionary& dictionary) { return Compiler(dictionary).run(); }

}  // namespace orbseq::engine
