// A lattice made ready for queries: what a recommendation needs, and nothing else.
//
// Shape. One block of bytes, which is also its stored form (engine/compiledForm.h), in sections:
//
//   nodes      20 bytes a stored sequence that has a counter, level by level, and one more that
//   ends
//              the runs of the last; the empty sequence is none of them
//   sets       1 byte a node: its number of item sets, and whether item sets grow above it
//   climbs     8 bytes a link by which the search climbs: an item, and the node of the sequence
//   that
//              has it in front. Of a node first those that open a new first item set (code 1), then
//              those that join the first one (code 0), each by item
//   proposals  8 bytes a link that an answer can name: an item, and the count of the longer
//              sequence. Of a node first those whose item joins the last item set, then those whose
//              item opens a new one, each by count, the largest first
//   items      16 bytes an item, by number
//   popular    4 bytes an item, by popularity
//   lookup     4 bytes a number from the least item to the greatest: the item with its marks; empty
//              where that would be more than kMostLookup in all and for an item
//
// A lattice of one-item sets comes to 20 + 1 + 8 + 8 bytes a sequence; an item set of k items in
// front or at the end costs k links instead of one.
//
// What is dropped: links whose longer sequence is not stored or has no counter, links at other
// places, climbs by items that are not stored alone, which histories are asked without,
// climbs to what proposes nothing and leads to nothing that does, and proposals that no answer
// gives (a count of 0 below a fraction). Where the longest sequence has at most two items, nothing
// climbs, since the search then finds single items alone.
//
// Lifecycle. Made by compile() or read; never changed. It keeps nothing of the dictionary.
// Threads: any number of readers.

#ifndef ENGINE_COMPILEDLATTICE_H_
#define ENGINE_COMPILEDLATTICE_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "common/OrbExport.h"

namespace orbseq::engine {

// Numbers of nodes and of items, the latter in the order of the items' own numbers.
using NodeId = std::uint32_t;
using ItemId = std::uint32_t;
constexpr std::uint32_t kNone = 0xFFFFFFFFU;
// Marks added to the number of an item: what it is, and what the question for one kind of
// proposals - what joins the last item set, what opens a new one - needs it for.
constexpr std::uint32_t kStranger = 0x80000000U;         // not stored alone
constexpr std::uint32_t kClimbsToJoining = 0x40000000U;  // some climb by it leads to such proposals
constexpr std::uint32_t kClimbsToOpening = 0x20000000U;
constexpr std::uint32_t kStartsJoining = 0x10000000U;  // alone it has some, or leads to some
constexpr std::uint32_t kStartsOpening = 0x08000000U;
constexpr std::uint32_t kIsOpening =
    0x04000000U;  // it is proposed itself, so that it matters where
constexpr std::uint32_t kMostItems = 0x03FFFFFFU;

struct Node {
  std::int32_t count;       // customers that hold the sequence
  std::uint32_t climbs;     // index of the first climb that opens a set; ends where the joins begin
  std::uint32_t joins;      // of the first that joins; ends where the next node's climbs begin
  std::uint32_t proposals;  // of the first proposal that joins; ends where the opens begin
  std::uint32_t opens;      // of the first that opens; ends where the next node's proposals begin
};

// Kinds of links that an answer names, and of what a climb leads to: to sequences - the node
// itself, or one reached from it - that propose in the one way or the other.
constexpr std::uint32_t kJoining = 0x40000000U;  // an item that joins the last item set
constexpr std::uint32_t kOpening = 0x80000000U;  // an item that opens a new one
constexpr std::uint32_t kMostNodes = 0x3FFFFFFFU;

struct Climb {
  ItemId item;
  std::uint32_t marked;  // the node, with kJoining and kOpening

  NodeId node() const noexcept { return marked & kMostNodes; }
};

// The marks of an item by which a climb of those marks goes.
constexpr std::uint32_t marksOfClimb(std::uint32_t marked) noexcept {
  return ((marked & kJoining) != 0 ? kClimbsToJoining : 0) |
         ((marked & kOpening) != 0 ? kClimbsToOpening : 0);
}

struct Proposal {
  ItemId item;
  std::int32_t count;  // customers that hold the longer sequence
};

struct Item {
  std::int32_t number;
  NodeId node;         // of the sequence of this item alone; kNone: it has no counter
  std::int32_t count;  // of that sequence; 0 without a counter
  std::uint32_t marks;

  // Whether the sequence of this item alone is stored: others are left out of histories.
  bool isKnown() const noexcept { return (marks & kStranger) == 0; }
};

// The item of that number among items by number, or null.
ORBSEQ_EXPORT const Item* findItem(std::span<const Item> items, std::int32_t number) noexcept;

// Where an image of so many things has its sections. All offsets are multiples of 64 bytes.
struct Layout {
  std::uint64_t nodes = 0;
  std::uint64_t sets = 0;
  std::uint64_t climbs = 0;
  std::uint64_t proposals = 0;
  std::uint64_t items = 0;
  std::uint64_t popular = 0;
  std::uint64_t lookup = 0;
  std::uint64_t bytes = 0;  // of the whole image
};

// The beginning of an image.
struct Header {
  static constexpr std::uint64_t kMagic = 0x0A43'5145'5342'524FU;  // "ORBSEQC\n", little end first
  static constexpr std::uint32_t kVersion = 2;
  static constexpr std::uint32_t kByteOrder = 0x01020304U;
  static constexpr std::size_t kLevels = 33;  // of sequences of up to 32 items

  std::uint64_t magic;
  std::uint32_t version;
  std::uint32_t byteOrder;
  std::uint64_t bytes;     // of the whole image
  std::uint64_t checksum;  // of the whole image, with 0 in this place
  std::int32_t customers;
  std::uint32_t nodes;  // without the one that ends the runs
  std::uint32_t climbs;
  std::uint32_t proposals;
  std::uint32_t items;
  std::uint32_t popular;
  std::uint32_t lookup;
  std::uint32_t hasJoins;             // kinds of which any climb joins an item set
  std::uint32_t levels[kLevels + 1];  // first node of the sequences of so many items
  std::uint32_t hasStrangers;         // whether any item is not stored alone
  std::uint32_t kinds;                // of which there are any proposals
};
static_assert(sizeof(Header) % 8 == 0);

class ORBSEQ_EXPORT CompiledLattice {
 public:
  // Numbers from the least to the greatest item that the look-up may have, in all or for each item.
  static constexpr std::uint64_t kMostLookup = 65536;
  static constexpr std::uint64_t kMostLookupForItem = 16;
  static constexpr std::uint8_t kGrowsAbove = 0x80;  // in `sets`

  // Bytes that hold an image, and whatever they live in.
  class Storage {
   public:
    virtual ~Storage() = default;
    virtual std::span<const std::byte> bytes() const noexcept = 0;
  };

  // Requires an image that isImage() holds for, aligned to 8 bytes.
  explicit CompiledLattice(std::unique_ptr<const Storage> storage);
  ~CompiledLattice();
  CompiledLattice(CompiledLattice&&) noexcept;
  CompiledLattice& operator=(CompiledLattice&&) noexcept;

  std::int32_t customers() const noexcept { return header_->customers; }
  // Whether any sequence proposes in the kind's way.
  bool hasProposals(std::uint32_t kind) const noexcept { return (header_->kinds & kind) != 0; }
  // Whether climbs of any of the kinds join an item set.
  bool hasJoins(std::uint32_t kinds = kJoining | kOpening) const noexcept {
    return (header_->hasJoins & kinds) != 0;
  }
  bool hasStrangers() const noexcept { return hasStrangers_; }

  // The node's end of runs is found in the one behind it.
  const Node* node(NodeId id) const noexcept { return nodes_ + id; }
  std::size_t nodeCount() const noexcept { return header_->nodes; }
  // The nodes of the sequences of so many items, first and one past the last.
  std::pair<NodeId, NodeId> level(std::size_t items) const noexcept;
  std::int32_t setsOf(NodeId id) const noexcept { return sets_[id] & 0x7F; }
  // Whether a climb that joins an item set and leads to what opens can be reached from the node.
  bool growsAbove(NodeId id) const noexcept { return (sets_[id] & kGrowsAbove) != 0; }

  const Climb* climbs() const noexcept { return climbs_; }
  const Proposal* proposals() const noexcept { return proposals_; }
  const Item& item(ItemId id) const noexcept { return items_[id]; }
  std::size_t itemCount() const noexcept { return header_->items; }
  // Items that are stored alone, with a counter: most customers first, greater numbers first among
  // equals.
  std::span<const ItemId> popular() const noexcept { return {popular_, header_->popular}; }
  // The item of that number with its marks; kNone, which is greater than all others, where the
  // lattice has nothing of it. What is known is less than kStranger.
  std::uint32_t find(std::int32_t number) const noexcept {
    const std::uint32_t offset = static_cast<std::uint32_t>(number) - leastItem_;
    if (offset < lookupSize_) return lookup_[offset];
    return lookupSize_ > 0 ? kNone : findSlowly(number);
  }

  std::span<const std::byte> image() const noexcept { return storage_->bytes(); }
  // Bytes by section: the header, then as above.
  std::vector<std::pair<const char*, std::size_t>> bytesBySection() const;

 private:
  std::uint32_t findSlowly(std::int32_t number) const noexcept;

  std::unique_ptr<const Storage> storage_;
  const Header* header_;
  const Node* nodes_;
  const std::uint8_t* sets_;
  const Climb* climbs_;
  const Proposal* proposals_;
  const Item* items_;
  const ItemId* popular_;
  const std::uint32_t* lookup_;
  std::uint32_t lookupSize_;
  std::uint32_t leastItem_;
  bool hasStrangers_;
};

// The sections of an image with that header. The header's numbers are trusted.
ORBSEQ_EXPORT Layout layoutOf(const Header& header) noexcept;

}  // namespace orbseq::engine

#endif  // ENGINE_COMPILEDLATTICE_H_
