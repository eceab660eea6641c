#include "engine/compiledForm.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <cstddef>
#include <cstdio>
#include <cstring>

#include "common/guards.h"

namespace orbseq::engine {

namespace {

std::string atOffset(std::uint64_t offset) {
  char text[32];
  std::snprintf(text, sizeof text, "offset 0x%llX: ", static_cast<unsigned long long>(offset));
  return text;
}

[[noreturn]] void refuse(std::uint64_t offset, const std::string& detail) {
  throw CompiledFormError(offset, detail);
}

Header headerIn(std::span<const std::byte> image) {
  Header header;
  if (image.size() < sizeof header && guarded("compiled.header"))
    refuse(image.size(), "the compiled form is cut off in its header");
  std::memcpy(&header, image.data(), sizeof header);
  if (header.magic != Header::kMagic && guarded("compiled.magic"))
    refuse(0, "this is no compiled form");
  if (header.byteOrder != Header::kByteOrder && guarded("compiled.byte order"))
    refuse(offsetof(Header, byteOrder), "the compiled form is of another byte order");
  if (header.version != Header::kVersion && guarded("compiled.version"))
    refuse(offsetof(Header, version), "the compiled form has version " +
                                          std::to_string(header.version) + "; this build reads " +
                                          std::to_string(Header::kVersion));
  if ((header.bytes != image.size() || layoutOf(header).bytes != header.bytes) &&
      guarded("compiled.size"))
    refuse(offsetof(Header, bytes), "the compiled form says it has " +
                                        std::to_string(header.bytes) + " bytes, and has " +
                                        std::to_string(image.size()));
  if (kGuards && header.checksum != checksumOf(image) && guarded("compiled.checksum"))
    refuse(offsetof(Header, checksum), "the compiled form does not fit its checksum");
  return header;
}

template <class T>
std::span<const T> sectionOf(std::span<const std::byte> image, std::uint64_t offset,
                             std::size_t count) noexcept {
  return {reinterpret_cast<const T*>(image.data() + offset), count};
}

// Whether each of the values is below the bound, or one that is always allowed.
template <class Values, class Key>
bool areBelow(const Values& values, std::uint32_t bound, Key key) noexcept {
  std::uint32_t bad = 0;  // without a branch for each
  for (const auto& value : values) bad |= static_cast<std::uint32_t>(key(value) >= bound);
  return bad == 0;
}

void checkNodes(std::span<const Node> nodes, const Header& header, std::uint64_t offset) {
  std::uint32_t bad = nodes.front().climbs | nodes.front().proposals;
  for (std::size_t i = 0; i + 1 < nodes.size(); ++i) {
    bad |= static_cast<std::uint32_t>(nodes[i].joins < nodes[i].climbs);
    bad |= static_cast<std::uint32_t>(nodes[i + 1].climbs < nodes[i].joins);
    bad |= static_cast<std::uint32_t>(nodes[i].opens < nodes[i].proposals);
    bad |= static_cast<std::uint32_t>(nodes[i + 1].proposals < nodes[i].opens);
  }
  const Node& last = nodes.back();
  if ((bad != 0 || last.climbs != header.climbs || last.proposals != header.proposals) &&
      guarded("compiled.runs"))
    refuse(offset, "the runs of the nodes do not follow each other");
}

// A climb leads from one level to the next, so that no search goes round.
void checkClimbs(std::span<const Node> nodes, std::span<const Climb> climbs, const Header& header,
                 std::uint64_t offset) {
  for (std::size_t size = 0; size <= Header::kLevels; ++size)
    if ((header.levels[size] > header.nodes ||
         (size > 0 && header.levels[size] < header.levels[size - 1])) &&
        guarded("compiled.level order"))
      refuse(offsetof(Header, levels), "the levels do not follow each other");
  if ((header.levels[0] != 0 || header.levels[1] != 0 ||
       header.levels[Header::kLevels] != header.nodes) &&
      guarded("compiled.levels"))
    refuse(offsetof(Header, levels), "the levels do not hold all nodes");
  for (std::size_t size = 1; size < Header::kLevels; ++size) {
    const std::uint32_t begin = nodes[header.levels[size]].climbs;
    const std::uint32_t end = nodes[header.levels[size + 1]].climbs;
    const std::uint32_t first = header.levels[size + 1];
    const std::uint32_t above =
        (size + 2 <= Header::kLevels ? header.levels[size + 2] : header.nodes) - first;
    if (!areBelow(climbs.subspan(begin, end - begin), above,
                  [first](const Climb& climb) { return climb.node() - first; }) &&
        guarded("compiled.climb"))
      refuse(offset, "a climb does not lead to the next level");
  }
}

// An item is kept of a history as its marks tell.
void checkMarks(std::span<const Climb> climbs, std::span<const Item> items, std::uint64_t offset) {
  std::uint32_t missing = 0;
  for (const Climb& climb : climbs)
    missing |= marksOfClimb(climb.marked) & ~items[climb.item].marks;
  if (missing != 0 && guarded("compiled.marks"))
    refuse(offset, "the items do not tell of all climbs by them");
}

// A search of a kind without joins keeps no visits.
void checkJoins(std::span<const Node> nodes, std::span<const Climb> climbs, const Header& header) {
  std::uint32_t kinds = 0;
  for (std::size_t i = 0; i + 1 < nodes.size(); ++i)
    for (std::uint32_t k = nodes[i].joins; k < nodes[i + 1].climbs; ++k) kinds |= climbs[k].marked;
  if ((kinds & (kJoining | kOpening) & ~header.hasJoins) != 0 && guarded("compiled.joins"))
    refuse(offsetof(Header, hasJoins), "climbs join item sets, which the header denies");
}

void checkItems(std::span<const Item> items, const Header& header, std::uint64_t offset) {
  const std::uint32_t singles = header.levels[2];
  std::size_t strangers = 0;
  for (const Item& item : items) strangers += item.isKnown() ? 0 : 1;
  if ((header.items > kMostItems || (strangers > 0) != (header.hasStrangers == 1)) &&
      guarded("compiled.strangers"))
    refuse(offsetof(Header, hasStrangers), "the number of items is not what it should be");
  for (std::size_t i = 0; i < items.size(); ++i)
    if (((i > 0 && items[i].number <= items[i - 1].number) || (items[i].marks & kMostItems) != 0 ||
         (items[i].node != kNone && (items[i].node >= singles || !items[i].isKnown()))) &&
        guarded("compiled.item"))
      refuse(offset + i * sizeof(Item), "item " + std::to_string(i) + " is no item");
}

void checkLookup(std::span<const std::uint32_t> lookup, std::span<const Item> items,
                 std::uint64_t offset) {
  if (lookup.empty()) return;
  std::size_t item = 0;
  for (std::size_t i = 0; i < lookup.size(); ++i) {
    const bool isItem =
        item < items.size() && static_cast<std::uint32_t>(items[item].number) -
                                       static_cast<std::uint32_t>(items[0].number) ==
                                   i;
    const std::uint32_t wanted = isItem ? static_cast<ItemId>(item) | items[item].marks : kNone;
    if (lookup[i] != wanted && guarded("compiled.look-up"))
      refuse(offset + i * sizeof(std::uint32_t), "the look-up of items does not fit them");
    item += isItem ? 1 : 0;
  }
  if (item != items.size() && guarded("compiled.look-up lacks"))
    refuse(offset, "the look-up of items lacks some");
}

}  // namespace

CompiledFormError::CompiledFormError(std::uint64_t offset, const std::string& detail)
    : std::runtime_error(atOffset(offset) + detail) {}

CompiledFormError::~CompiledFormError() = default;

std::uint64_t checksumOf(std::span<const std::byte> image) noexcept {
  // The image in two parts, around the checksum's place, which counts as zeros.
  Header header{};
  std::memcpy(&header, image.data(), sizeof header);
  header.checksum = 0;
  const std::uint64_t head = XXH3_64bits(&header, sizeof header);
  return XXH3_64bits_withSeed(image.data() + sizeof header, image.size() - sizeof header, head);
}

bool beginsCompiledForm(std::span<const std::byte> bytes) noexcept {
  std::uint64_t magic = 0;
  if (bytes.size() < sizeof magic) return false;
  std::memcpy(&magic, bytes.data(), sizeof magic);
  return magic == Header::kMagic;
}

CompiledLattice readCompiledForm(std::unique_ptr<const CompiledLattice::Storage> storage) {
  const std::span<const std::byte> image = storage->bytes();
  const Header header = headerIn(image);
  const Layout layout = layoutOf(header);
  const auto nodes = sectionOf<Node>(image, layout.nodes, std::size_t{header.nodes} + 1);
  const auto climbs = sectionOf<Climb>(image, layout.climbs, header.climbs);
  const auto proposals = sectionOf<Proposal>(image, layout.proposals, header.proposals);
  const auto items = sectionOf<Item>(image, layout.items, header.items);
  checkNodes(nodes, header, layout.nodes);
  checkClimbs(nodes, climbs, header, layout.climbs);
  checkJoins(nodes, climbs, header);
  if (!areBelow(climbs, header.items, [](const Climb& climb) { return climb.item; }) &&
      guarded("compiled.climb item"))
    refuse(layout.climbs, "a climb names no item");
  if (!areBelow(proposals, header.items, [](const Proposal& one) { return one.item; }) &&
      guarded("compiled.proposal item"))
    refuse(layout.proposals, "a proposal names no item");
  checkItems(items, header, layout.items);
  if (!areBelow(sectionOf<ItemId>(image, layout.popular, header.popular), header.items,
                [](ItemId item) { return item; }) &&
      guarded("compiled.popular item"))
    refuse(layout.popular, "a popular item is none");
  checkMarks(climbs, items, layout.items);
  checkLookup(sectionOf<std::uint32_t>(image, layout.lookup, header.lookup), items, layout.lookup);
  return CompiledLattice(std::move(storage));
}

}  // namespace orbseq::engine
