#include "bench/worlds.h"

#include <memory>
#include <random>
#include <stdexcept>
#include <string>

#include "sequence/SequenceCounter.h"

namespace orbseq::bench {

namespace {

using SEQUENCE_NAMESPACE_800::SeqDictionarySettings;
using SEQUENCE_NAMESPACE_800::SequenceCounter;

constexpr std::uint32_t kSeed = 20'261'121;
constexpr double kJointShare = 0.2;  // of the share of pairs, those in one set

class Maker {
 public:
  explicit Maker(const WorldOptions& options)
      : items_(itemsOf(options)), pairs_(draw(options.pairShare)) {
    joint_ = draw(options.pairShare * kJointShare);
    SeqDictionarySettings settings;
    settings.numLevels = 5;
    model_.lattice = std::make_unique<Lattice>(settings);
  }

  Model run() {
    store({}, 1'000'000, 1'000'001);
    for (std::int32_t a = 1; a <= items_; ++a) {
      store({{1, a}}, 100'000, 900'000);
      model_.labels[a] = "label of item " + std::to_string(a);
      for (std::int32_t b = 1; b <= items_; ++b) storeFrom(a, b);
    }
    if (!model_.lattice->buildLattice().IsOK())
      throw std::runtime_error("the lattice cannot be linked");
    return std::move(model_);
  }

 private:
  using Pairs = std::vector<std::vector<bool>>;  // [item][item]

  Pairs draw(double share) {
    Pairs pairs(static_cast<std::size_t>(items_) + 1);
    for (auto& row : pairs) {
      row.resize(pairs.size());
      for (std::size_t b = 1; b < row.size(); ++b)
        row[b] = static_cast<double>(random_()) < share * 4294967296.0;
    }
    return pairs;
  }

  static bool has(const Pairs& pairs, std::int32_t a, std::int32_t b) {
    return pairs[static_cast<std::size_t>(a)][static_cast<std::size_t>(b)];
  }

  // What begins with (a)(b) or (a b).
  void storeFrom(std::int32_t a, std::int32_t b) {
    const bool isPair = has(pairs_, a, b);
    const bool isJoint = a < b && has(joint_, a, b);
    if (isPair) store({{1, a}, {1, b}}, 10'000, 100'000);
    if (isJoint) store({{2, a, b}}, 10'000, 100'000);
    if (!isPair && !isJoint) return;
    for (std::int32_t c = 1; c <= items_; ++c) {
      if (!has(pairs_, a, c) || !has(pairs_, b, c)) continue;
      if (isPair) store({{1, a}, {1, b}, {1, c}}, 1'000, 10'000);
      if (isJoint) store({{2, a, b}, {1, c}}, 1'000, 10'000);
    }
  }

  void store(const std::vector<std::vector<int>>& sets, int least, int end) {
    std::vector<const int*> pointers;
    pointers.reserve(sets.size());
    for (const auto& set : sets) pointers.push_back(set.data());
    const int count = least + static_cast<int>(random_() % static_cast<std::uint32_t>(end - least));
    const SequenceCounter counter(0, count, nullptr);
    model_.lattice->addSequence(pointers.data(), static_cast<int>(pointers.size()), &counter);
  }

  const std::int32_t items_;
  std::mt19937 random_{kSeed};
  Pairs pairs_;
  Pairs joint_;
  Model model_;
};

}  // namespace

std::int32_t itemsOf(const WorldOptions& options) {
  const double share = options.pairShare;
  const double joint = share * kJointShare / 2.0;
  std::int32_t items = 1;
  for (;; ++items) {
    const double n = items;
    const double expected =
        n + n * n * (share + joint) + n * n * n * share * share * (share + joint);
    if (expected >= static_cast<double>(options.sequences)) return items;
  }
}

Model makeModel(const WorldOptions& options) { return Maker(options).run(); }

std::vector<engine::History> makeHistories(const HistoryOptions& options) {
  std::mt19937 random(kSeed + 1);
  const auto all = static_cast<std::uint32_t>(options.items + (options.items + 8) / 9);
  std::vector<engine::History> histories(options.histories);
  for (engine::History& history : histories)
    for (std::size_t s = 0; s < options.sets; ++s) {
      for (std::size_t k = 0; k < options.itemsPerSet; ++k)
        history.addItem(1 + static_cast<std::int32_t>(random() % all));
      history.endSet();
    }
  return histories;
}

}  // namespace orbseq::bench
