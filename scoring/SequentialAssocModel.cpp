#include "scoring/SequentialAssocModel.h"

#include <ostream>
#include <utility>
#include <vector>

#include "lattice/SequenceDictionary.h"
#include "scoring/CaseFields.h"
#include "scoring/CaseText.h"
#include "scoring/SequentialResult.h"
#include "scoring/VectorValue.h"
#include "scoring/hostapi/DictVar.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/SeqConsequentDescriptor.h"

namespace OrbQuillon_830 {

namespace {

using SEQUENCE_NAMESPACE_800::HashtableSQPair;
using SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor;
using SEQUENCE_NAMESPACE_800::Sequence;
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

}  // namespace

class SequentialAssocModel::Lattice final : public SEQUENCE_NAMESPACE_800::SequenceDictionary {
 public:
  using SequenceDictionary::SequenceDictionary;
};

SequentialAssocModel::SequentialAssocModel() : defaultSequence_(std::make_unique<Sequence>()) {}

SequentialAssocModel::SequentialAssocModel(HashtableSQPair** tables, std::int32_t levelCount)
    : SequentialAssocModel() {
  lattice_ = std::make_unique<Lattice>(tables, levelCount);
  levelCount_ = levelCount;
}

SequentialAssocModel::~SequentialAssocModel() = default;

// Deliberate: always prediction-only.
void SequentialAssocModel::SetPredictionOnly(bool) {}

// Deliberate: the model names no variables.
OrbScore::ScoreDictionary* SequentialAssocModel::GetVarsOfRole(VarRole) const { return nullptr; }

OrbScore::OrbStatus SequentialAssocModel::GetScore(const OrbScore::ScoreCaseRecord* record,
                                                   OrbScore::ScoreResult*& result, bool) const {
  const CaseFields fields = readCaseFields(record);
  const Sequence history = GetSequence(fields.history);
  const Sequence* const asked = fields.history.empty() ? defaultSequence_.get() : &history;

  std::vector<SeqConsequentDescriptor> items;
  // Deliberate: the query's status is dropped; scoring never fails outward.
  if (lattice_ && fields.futureItems)
    lattice_->GetFutureItems(items, asked, fields.maxReturn, fields.wholeOnly);
  else if (lattice_)
    lattice_->GetCurrentItems(items, asked, fields.maxReturn);

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

Sequence SequentialAssocModel::GetSequence(const std::string& text) const {
  Sequence sequence;
  appendCaseText(text, sequence);
  return sequence;
}

void SequentialAssocModel::Display(std::ostream& os) const {
  for (std::int32_t level = 0; level < levelCount_; ++level)
    lattice_->displaySize(level, kShownPerLevel, os);
}

}  // namespace OrbQuillon_830
