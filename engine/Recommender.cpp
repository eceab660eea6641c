#include "engine/Recommender.h"

#include <algorithm>
#include <string>

#include "engine/Query.h"

namespace orbseq::engine {

StepBudgetSpent::StepBudgetSpent(std::uint64_t budget)
    : std::runtime_error("the query takes more than " + std::to_string(budget) +
                         " steps, the limit") {}

StepBudgetSpent::~StepBudgetSpent() = default;

void Workspace::fit(const CompiledLattice& lattice) {
  const std::size_t items = lattice.itemCount();
  if (candidate_.size() < items) {  // the last of them to grow, should memory run out among them
    last_.resize(items, 0);
    latest_.resize(items, 0);
    candidate_.resize(items, kNone);
  }
  if (!lattice.hasJoins()) {
    visits_.clear();
    return;
  }
  if (visits_.size() < lattice.nodeCount()) visits_.resize(lattice.nodeCount(), {0, 0});
  if (++query_ == 0) {
    visits_.assign(visits_.size(), {0, 0});
    query_ = 1;
  }
}

// Deliberate: without a history the answer is what is most popular.
void Recommender::popularItems(std::int32_t maxCount, Answers& out) const {
  const auto popular = lattice_.popular();
  const std::size_t count = std::min(static_cast<std::size_t>(maxCount), popular.size());
  out.reserve(out.size() + count);  // the last step that can throw
  for (std::size_t k = 0; k < count; ++k) {
    const Item& item = lattice_.item(popular[k]);
    const double share = static_cast<double>(item.count) / lattice_.customers();
    out.emplace_back(item.number, share, share, 1.0);
  }
}

void Recommender::currentItems(const History& history, std::int32_t maxCount, Workspace& workspace,
                               Answers& out) const {
  if (maxCount <= 0) return;
  if (history.sets() == 0) return popularItems(maxCount, out);
  if (!lattice_.hasProposals(kJoining)) return;
  Query query(lattice_, workspace, maxCount, kJoining);
  query.askCurrent(history);
  query.appendTo(out);
}

void Recommender::futureItems(const History& history, std::int32_t maxCount, bool wholeOnly,
                              Workspace& workspace, Answers& out) const {
  if (maxCount <= 0) return;
  if (history.sets() == 0) return popularItems(maxCount, out);
  if (!lattice_.hasProposals(kOpening)) return;
  Query query(lattice_, workspace, maxCount, kOpening);
  if (wholeOnly)
    query.askWhole(history);
  else
    query.askBeginnings(history);
  query.appendTo(out);
}

}  // namespace orbseq::engine
