#include "scoring/SequentialAssocModel.h"

#include <ostream>
#include <utility>
#include <vector>

#include "engine/Pool.h"
#include "engine/Recommender.h"
#include "engine/Scratch.h"
#include "engine/caseText.h"
#include "engine/compile.h"
#include "lattice/SequenceDictionary.h"
#include "scoring/CaseFields.h"
#include "scoring/SequentialResult.h"
#include "scoring/VectorValue.h"
#include "scoring/hostapi/DictVar.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/SeqConsequentDescriptor.h"

namespace OrbQuillon_830 {

namespace {

using SEQUENCE_NAMESPACE_800::HashtableSQPair;
using SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor;
using ItemList = VectorValue<SeqConsequentDescriptor>;

constexpr int kShownPerLevel = 20;
constexpr const char* kFutureItems = "futureItems";
constexpr const char* kCurrentItems = "currentItems";

std::unique_ptr<SequentialResult> newResult(const std::vector<SeqConsequentDescriptor>& items) {
  auto target = std::make_unique<OrbScore::DictVar>(kCurrentItems, OrbScore::ScoreDictVar::kVector);
  auto result = std::make_unique<SequentialResult>(target.get());
  static_cast<void>(target.release());
  result->SetPrediction(new ItemList(items));
  return result;
}

void refill(SequentialResult& result, const std::vector<SeqConsequentDescriptor>& items) {
  if (auto* const list = dynamic_cast<ItemList*>(result.GetPrediction()))
    list->SetVectorValue(items);
  else
    result.SetPrediction(new ItemList(items));
}

// Deliberate: the status is always success; scoring never fails outward.
OrbScore::OrbStatus fill(OrbScore::ScoreResult*& result, const CaseFields& fields,
                         const std::vector<SeqConsequentDescriptor>& items) {
  auto* own = dynamic_cast<SequentialResult*>(result);
  if (own != nullptr) {
    refill(*own, items);
  } else {
    own = newResult(items).release();
    delete std::exchange(result, own);  // the new result is complete before the old one goes
  }
  own->SetTargetVarName(fields.futureItems ? kFutureItems : kCurrentItems);
  return {};
}

}  // namespace

class SequentialAssocModel::Lattice final : public SEQUENCE_NAMESPACE_800::SequenceDictionary {
 public:
  using SequenceDictionary::disownTables;
  using SequenceDictionary::SequenceDictionary;
};

class SequentialAssocModel::Engine {
 public:
  using Scratch = orbseq::engine::Scratch;
  using Borrowed = orbseq::engine::Pool<Scratch>::Borrowed;

  explicit Engine(const Lattice& lattice)
      : compiled_(orbseq::engine::compile(lattice)), recommender_(compiled_) {}

  Borrowed borrow() const { return Borrowed(pool_); }

  void answer(const CaseFields& fields, Scratch& scratch) const {
    scratch.history.clear();
    orbseq::engine::appendCaseText(fields.history, scratch.history);
    if (fields.futureItems)
      recommender_.futureItems(scratch.history, fields.maxReturn, fields.wholeOnly,
                               scratch.workspace, scratch.answers);
    else
      recommender_.currentItems(scratch.history, fields.maxReturn, scratch.workspace,
                                scratch.answers);
  }

 private:
  orbseq::engine::CompiledLattice compiled_;
  orbseq::engine::Recommender recommender_;
  mutable orbseq::engine::Pool<Scratch> pool_;
};

SequentialAssocModel::SequentialAssocModel() = default;

SequentialAssocModel::SequentialAssocModel(HashtableSQPair** tables, std::int32_t levelCount)
    : levelCount_(levelCount) {
  auto lattice = std::make_unique<Lattice>(tables, levelCount);
  try {
    engine_ = std::make_unique<const Engine>(*lattice);
  } catch (...) {
    lattice->disownTables();
    throw;
  }
  lattice_ = std::move(lattice);
}

SequentialAssocModel::~SequentialAssocModel() = default;

// Deliberate: always prediction-only.
void SequentialAssocModel::SetPredictionOnly(bool) {}

// Deliberate: the model names no variables.
OrbScore::ScoreDictionary* SequentialAssocModel::GetVarsOfRole(VarRole) const { return nullptr; }

OrbScore::OrbStatus SequentialAssocModel::GetScore(const OrbScore::ScoreCaseRecord* record,
                                                   OrbScore::ScoreResult*& result, bool) const {
  const CaseFields fields = readCaseFields(record);
  if (!engine_) return fill(result, fields, {});
  const Engine::Borrowed scratch = engine_->borrow();
  scratch->answers.clear();
  engine_->answer(fields, *scratch);
  return fill(result, fields, scratch->answers);
}

void SequentialAssocModel::Display(std::ostream& os) const {
  for (std::int32_t level = 0; level < levelCount_; ++level)
    lattice_->displaySize(level, kShownPerLevel, os);
}

}  // namespace OrbQuillon_830
