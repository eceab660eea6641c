#include "engine/CompiledLattice.h"

#include <algorithm>

namespace orbseq::engine {

namespace {

template <class T>
const T* at(const std::byte* image, std::uint64_t offset) noexcept {
  return reinterpret_cast<const T*>(image + offset);
}

}  // namespace

const Item* findItem(std::span<const Item> items, std::int32_t number) noexcept {
  const auto found =
      std::lower_bound(items.begin(), items.end(), number,
                       [](const Item& item, std::int32_t wanted) { return item.number < wanted; });
  return found != items.end() && found->number == number ? &*found : nullptr;
}

Layout layoutOf(const Header& header) noexcept {
  constexpr std::uint64_t kAlignment = 64;
  std::uint64_t end = sizeof(Header);
  const auto section = [&end](std::uint64_t count, std::uint64_t size) {
    const std::uint64_t begin = (end + kAlignment - 1) / kAlignment * kAlignment;
    end = begin + count * size;
    return begin;
  };
  Layout layout;
  layout.nodes = section(std::uint64_t{header.nodes} + 1, sizeof(Node));
  layout.sets = section(header.nodes, 1);
  layout.climbs = section(header.climbs, sizeof(Climb));
  layout.proposals = section(header.proposals, sizeof(Proposal));
  layout.items = section(header.items, sizeof(Item));
  layout.popular = section(header.popular, sizeof(ItemId));
  layout.lookup = section(header.lookup, sizeof(std::uint32_t));
  layout.bytes = end;
  return layout;
}

CompiledLattice::CompiledLattice(std::unique_ptr<const Storage> storage)
    : storage_(std::move(storage)) {
  const std::byte* const image = storage_->bytes().data();
  header_ = at<Header>(image, 0);
  const Layout layout = layoutOf(*header_);
  nodes_ = at<Node>(image, layout.nodes);
  sets_ = at<std::uint8_t>(image, layout.sets);
  climbs_ = at<Climb>(image, layout.climbs);
  proposals_ = at<Proposal>(image, layout.proposals);
  items_ = at<Item>(image, layout.items);
  popular_ = at<ItemId>(image, layout.popular);
  lookup_ = at<std::uint32_t>(image, layout.lookup);
  lookupSize_ = header_->lookup;
  leastItem_ = header_->items > 0 ? static_cast<std::uint32_t>(items_[0].number) : 0;
  hasStrangers_ = header_->hasStrangers != 0;
}

CompiledLattice::~CompiledLattice() = default;
CompiledLattice::CompiledLattice(CompiledLattice&&) noexcept = default;
CompiledLattice& CompiledLattice::operator=(CompiledLattice&&) noexcept = default;

std::pair<NodeId, NodeId> CompiledLattice::level(std::size_t items) const noexcept {
  if (items >= Header::kLevels) return {header_->nodes, header_->nodes};
  return {header_->levels[items], header_->levels[items + 1]};
}

std::uint32_t CompiledLattice::findSlowly(std::int32_t number) const noexcept {
  const Item* const found = findItem({items_, header_->items}, number);
  if (found == nullptr) return kNone;
  return static_cast<ItemId>(found - items_) | found->marks;
}

std::vector<std::pair<const char*, std::size_t>> CompiledLattice::bytesBySection() const {
  return {{"header", sizeof(Header)},
          {"nodes", (nodeCount() + 1) * sizeof(Node)},
          {"sets", nodeCount()},
          {"climbs", header_->climbs * sizeof(Climb)},
          {"proposals", header_->proposals * sizeof(Proposal)},
          {"items", header_->items * sizeof(Item)},
          {"popular", header_->popular * sizeof(ItemId)},
          {"lookup", header_->lookup * sizeof(std::uint32_t)}};
}

}  // namespace orbseq::engine
