#include "sequence/NTSequence.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>

#include "sequence/Sequence.h"
#include "sequence/TimedItemSet.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// Multipliers of the hash. Deliberate: entries 5 and 6 repeat entries 3 and 4; the order of the
// tables, and of the files that follow it, depends on every one.
constexpr std::array<std::uint32_t, 39> kPrimes = {
    9587, 9601, 9613, 9619, 9623, 9619, 9623, 9629, 9631, 9643, 9649, 9661, 9677,
    9679, 9689, 9697, 9719, 9721, 9733, 9739, 9743, 9749, 9767, 9769, 9781, 9787,
    9791, 9803, 9811, 9817, 9829, 9833, 9839, 9851, 9857, 9859, 9871, 9883, 9887};

// Unsigned throughout: the hash wraps around at 32 bits.
std::uint32_t hashOf(std::span<const std::int32_t> items, std::uint32_t pattern) noexcept {
  const auto item = [&](std::size_t p) { return static_cast<std::uint32_t>(items[p]); };
  if (items.empty()) return 0;
  if (items.size() == 1) return item(0);  // Deliberate: a negative item gives a negative hash
  std::uint32_t h = 0;
  if (items.size() == 2) {
    h = item(0) * 9829U + item(1) * 9817U;
    h = h + (h << (pattern & 31U)) + 1U;
  } else {
    for (std::size_t p = 0; p < items.size(); ++p)
      h = 2U * h + item(p) * kPrimes[p] * kPrimes[p + 1];
    h *= pattern;
  }
  // Negated when negative; the most negative value is its own negation and stays.
  return static_cast<std::int32_t>(h) < 0 ? 0U - h : h;
}

}  // namespace

class NTSequence::Builder {
 public:
  void add(std::int32_t item) {
    if (count_ == kMaxItems)
      throw std::length_error("packed sequence: more than " + std::to_string(kMaxItems) + " items");
    items_[static_cast<std::size_t>(count_++)] = item;
    pattern_ <<= 1;
    open_ = true;
  }

  void endSet() noexcept {  // a set without items leaves no trace
    if (!open_) return;
    pattern_ |= 1U;
    ++sets_;
    open_ = false;
  }

  void add(const int* itemsWithCount) {
    for (int k = 1; k <= itemsWithCount[0]; ++k) add(itemsWithCount[k]);
    endSet();
  }

  void add(const int* const* sets, int nSets) {
    for (int k = 0; k < nSets; ++k) add(sets[k]);
  }

  void add(const Sequence& sequence, std::int32_t nSets) {
    for (std::int32_t k = 0; k < nSets; ++k) {
      const TimedItemSet& set = *sequence[k];
      for (auto item = set.Begin(); item != set.End(); ++item) add(*item);
      endSet();
    }
  }

  std::int32_t count() const noexcept { return count_; }
  std::int32_t sets() const noexcept { return sets_; }
  std::uint32_t pattern() const noexcept { return pattern_; }
  const std::int32_t* items() const noexcept { return items_.data(); }

 private:
  std::array<std::int32_t, kMaxItems> items_;
  std::int32_t count_ = 0;
  std::int32_t sets_ = 0;
  std::uint32_t pattern_ = 0;
  bool open_ = false;  // the last item has not ended its set
};

void NTSequence::take(const Builder& builder, std::int32_t room) {
  if (room != room_) {
    items_ = room > 0 ? std::make_unique<std::int32_t[]>(static_cast<std::size_t>(room)) : nullptr;
    room_ = room;
  }
  std::copy_n(builder.items(), builder.count(), items_.get());
  itemCount_ = builder.count();
  setCount_ = builder.sets();
  pattern_ = static_cast<std::int32_t>(builder.pattern());
  computeHash();
}

void NTSequence::computeHash() noexcept {
  hash_ = static_cast<std::int32_t>(hashOf(items(), static_cast<std::uint32_t>(pattern_)));
}

NTSequence::NTSequence()
    : items_(std::make_unique<std::int32_t[]>(static_cast<std::size_t>(kMaxItems))),
      room_(kMaxItems) {}

NTSequence::NTSequence(const int* itemsWithCount) {
  Builder builder;
  builder.add(itemsWithCount);
  take(builder, builder.count());
}

NTSequence::NTSequence(const int* const* sets, int nSets) {
  Builder builder;
  builder.add(sets, nSets);
  take(builder, builder.count());
}

NTSequence::NTSequence(const Sequence* sequence) : NTSequence(*sequence, 0) {}

NTSequence::NTSequence(const Sequence& sequence, int drop) {
  Builder builder;
  builder.add(sequence, sequence.Length() - std::max(drop, 0));
  take(builder, builder.count());
}

NTSequence::NTSequence(const NTSequence& source, std::int32_t item, std::int32_t position) {
  if (!source.isPosition(position))
    throw std::out_of_range("packed sequence: position " + std::to_string(position) +
                            " of an extension is outside 0.." +
                            std::to_string(2 * source.setCount_ + 1));
  const bool opensSet = position % 2 != 0;
  const std::int32_t target = position / 2;
  Builder builder;
  std::int32_t set = 0;
  bool pending = true;
  const auto openSet = [&] {
    builder.add(item);
    builder.endSet();
    pending = false;
  };
  for (std::int32_t p = 0; p < source.itemCount_; ++p) {
    const std::int32_t next = source.items_[static_cast<std::size_t>(p)];
    if (pending && set == target) {
      if (opensSet) {
        openSet();
      } else if (next > item) {
        builder.add(item);
        pending = false;
      }
    }
    builder.add(next);
    if (!source.endsSet(p)) continue;
    if (pending && !opensSet && set == target) {
      builder.add(item);
      pending = false;
    }
    builder.endSet();
    ++set;
  }
  if (pending) openSet();
  take(builder, builder.count());
}

NTSequence::NTSequence(const NTSequence& other) { *this = other; }

NTSequence& NTSequence::operator=(const NTSequence& other) {
  if (this == &other) return *this;
  const PackedSequence packed{other.itemCount_, other.setCount_, other.hash_, other.pattern_,
                              other.items_.get()};
  reuseAs(&packed);
  return *this;
}

NTSequence::NTSequence(NTSequence&& other) noexcept
    : itemCount_(std::exchange(other.itemCount_, 0)),
      setCount_(std::exchange(other.setCount_, 0)),
      hash_(std::exchange(other.hash_, 0)),
      pattern_(std::exchange(other.pattern_, 0)),
      items_(std::move(other.items_)),
      room_(std::exchange(other.room_, 0)) {}

NTSequence& NTSequence::operator=(NTSequence&& other) noexcept {
  if (this == &other) return *this;
  itemCount_ = std::exchange(other.itemCount_, 0);
  setCount_ = std::exchange(other.setCount_, 0);
  hash_ = std::exchange(other.hash_, 0);
  pattern_ = std::exchange(other.pattern_, 0);
  items_ = std::move(other.items_);
  room_ = std::exchange(other.room_, 0);
  return *this;
}

NTSequence::~NTSequence() = default;

void NTSequence::reuseAs(const int* const* sets, int nSets) {
  Builder builder;
  builder.add(sets, nSets);
  take(builder, builder.count() == itemCount_ ? room_ : builder.count());
}

void NTSequence::reuseAs(const Sequence* sequence) {
  Builder builder;
  builder.add(*sequence, sequence->Length());
  take(builder, builder.count() == itemCount_ ? room_ : builder.count());
}

void NTSequence::reuseAs(const PackedSequence* packed) {
  const std::int32_t count = std::max(packed->itemCount, 0);
  if (count > kMaxItems)
    throw std::length_error("packed sequence: more than " + std::to_string(kMaxItems) + " items");
  if (count != room_) {
    auto fresh =
        count > 0 ? std::make_unique<std::int32_t[]>(static_cast<std::size_t>(count)) : nullptr;
    std::copy_n(packed->items, count, fresh.get());
    items_ = std::move(fresh);
    room_ = count;
  } else if (packed->items != items_.get()) {
    std::copy_n(packed->items, count, items_.get());
  }
  itemCount_ = count;
  setCount_ = packed->setCount;
  hash_ = packed->hash;
  pattern_ = packed->pattern;
}

bool NTSequence::isPosition(std::int32_t position) const noexcept {
  const std::int64_t sets = setCount_;
  if (position < 0 || position > 2 * sets + 1) return false;
  return position % 2 != 0 || position < 2 * sets;
}

std::string NTSequence::positionsText() const {
  const std::string behind = std::to_string(2 * setCount_ + 1);
  return setCount_ == 0 ? behind : "0.." + std::to_string(2 * setCount_ - 1) + ", " + behind;
}

std::int32_t NTSequence::getItemIndex(std::int32_t item) const noexcept {
  const auto all = items();
  const auto found = std::find(all.begin(), all.end(), item);
  return found == all.end() ? -1 : static_cast<std::int32_t>(found - all.begin());
}

std::int32_t NTSequence::getSizeOfSet(std::int32_t set) const noexcept {
  std::int32_t current = 0;
  std::int32_t size = 0;
  for (std::int32_t p = 0; p < itemCount_; ++p) {
    if (current == set) ++size;
    if (endsSet(p)) ++current;
  }
  return size;
}

std::int32_t NTSequence::getItemInSet(std::int32_t k, std::int32_t set) const noexcept {
  std::int32_t current = 0;
  std::int32_t index = 0;  // within the current set
  for (std::int32_t p = 0; p < itemCount_; ++p) {
    if (current == set && index == k) return items_[static_cast<std::size_t>(p)];
    ++index;
    if (!endsSet(p)) continue;
    ++current;
    index = 0;
  }
  return 0;
}

void NTSequence::getSetAsArray(std::int32_t set, std::int32_t* out) const noexcept {
  std::int32_t current = 0;
  for (std::int32_t p = 0; p < itemCount_; ++p) {
    if (current == set) *out++ = items_[static_cast<std::size_t>(p)];
    if (endsSet(p)) ++current;
  }
}

Sequence* NTSequence::createSequence() const {
  auto sequence = std::make_unique<Sequence>();
  TimedItemSet set;
  std::int32_t sets = 0;
  for (std::int32_t p = 0; p < itemCount_; ++p) {
    set.AddItem(items_[static_cast<std::size_t>(p)]);
    if (!endsSet(p)) continue;
    set.SetTime(++sets);
    sequence->AddTimedItemSet(&set);
    set.Clear();
  }
  return sequence.release();
}

bool NTSequence::operator==(const NTSequence& other) const noexcept {
  return hash_ == other.hash_ && pattern_ == other.pattern_ && itemCount_ == other.itemCount_ &&
         std::equal(items_.get(), items_.get() + itemCount_, other.items_.get());
}

bool NTSequence::operator<(const NTSequence& other) const noexcept {
  // The mask of a 32-item sequence's first item is the sign bit, and the walk wants positive masks.
  if (itemCount_ >= kMaxItems || other.itemCount_ >= kMaxItems) return false;
  for (std::int32_t p = 0; p < other.itemCount_; ++p) {
    if (p == itemCount_) return p == 0 || endsSet(p - 1);  // a prefix that ends with its set
    const std::int32_t a = items_[static_cast<std::size_t>(p)];
    const std::int32_t b = other.items_[static_cast<std::size_t>(p)];
    if (endsSet(p) != other.endsSet(p)) return endsSet(p) ? a <= b : a < b;
    if (a != b) return a < b;
  }
  return false;
}

void NTSequence::addItemAfterLast(std::int32_t item) {
  *this = NTSequence(*this, item, 2 * setCount_ + 1);
}

void NTSequence::addItemToSet(std::int32_t item, std::int32_t set) {
  if (setCount_ == 0) {
    addItemAfterLast(item);
    return;
  }
  if (set < 0 || set >= setCount_)
    throw std::out_of_range("packed sequence: set " + std::to_string(set) + " is outside 0.." +
                            std::to_string(setCount_ - 1));
  *this = NTSequence(*this, item, 2 * set);
}

bool NTSequence::removeItem(std::int32_t position, const NTSequence* source) {
  if (position < 0 || position >= source->itemCount_)
    throw std::out_of_range("packed sequence: item position " + std::to_string(position) +
                            " is outside 0.." + std::to_string(source->itemCount_ - 1));
  Builder builder;
  for (std::int32_t p = 0; p < source->itemCount_; ++p) {
    if (p != position) builder.add(source->items_[static_cast<std::size_t>(p)]);
    if (source->endsSet(p)) builder.endSet();
  }
  const bool setWent = builder.sets() < source->setCount_;
  take(builder, std::max(room_, builder.count()));
  return setWent;
}

}  // namespace SEQUENCE_NAMESPACE_800
