#include "tests/contract/support.h"

#include <gtest/gtest.h>

#include <ios>
#include <ostream>

#include "host/SafeDocument.h"
#include "scoring/VectorValue.h"
#include "scoring/hostapi/ScoreCaseRecord.h"
#include "scoring/hostapi/ScoreResult.h"
#include "sequence/SeqConsequentDescriptor.h"

namespace test {

using SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor;
using ItemList = OrbQuillon_830::VectorValue<SeqConsequentDescriptor>;

const std::string_view kSmallDocument = R"(<?xml version="1.0" encoding="UTF-8" ?>
<!DOCTYPE SequentialAssociationLattice SYSTEM "sequentiallattice.dtd">

<SequentialAssociationLattice version="1.2.1">
<SeqAssociationLattice>
<SeqInputStats numberOfTransactions="10" minimumSupport="0.2" maxSequenceSize="3" numberOfItems="2" numberOfSets="3" numberOfSequences="5"/>
<Item id="1" value="7" mappedValue="tea"/>
<Item id="2" value="9"/>
<Itemset id="1" numberOfItems="1"><ItemRef itemRef="1"/></Itemset>
<Itemset id="2" numberOfItems="1"><ItemRef itemRef="2"/></Itemset>
<Itemset id="3" numberOfItems="2"><ItemRef itemRef="2"/><ItemRef itemRef="1"/></Itemset>
<LatticeLevel level="0" numberOfSequences="1">
<Sequence id="1" support="1" occurrence="10" numberOfSets="0"><SeqAdjacentList numberOfAdjacentItems="2"><AdjacentItem itemRef="1" position="1"/><AdjacentItem itemRef="2" position="1"/></SeqAdjacentList></Sequence>
</LatticeLevel>
<LatticeLevel level="1" numberOfSequences="2">
<Sequence id="2" support="0.8" occurrence="8" numberOfSets="1"><ItemsetRef itemsetRef="1"/><SeqAdjacentList numberOfAdjacentItems="2"><AdjacentItem itemRef="2" position="0"/><AdjacentItem itemRef="2" position="3"/></SeqAdjacentList></Sequence>
<Sequence id="3" support="0.5" occurrence="5" numberOfSets="1"><ItemsetRef itemsetRef="2"/><SeqAdjacentList numberOfAdjacentItems="2"><AdjacentItem itemRef="1" position="0"/><AdjacentItem itemRef="1" position="1"/></SeqAdjacentList></Sequence>
</LatticeLevel>
<LatticeLevel level="2" numberOfSequences="2">
<Sequence id="4" support="0.4" occurrence="4" numberOfSets="1"><ItemsetRef itemsetRef="3"/><SeqAdjacentList numberOfAdjacentItems="0"/></Sequence>
<Sequence id="5" support="0.2" occurrence="2" numberOfSets="2"><ItemsetRef itemsetRef="1"/><ItemsetRef itemsetRef="2"/><SeqAdjacentList numberOfAdjacentItems="0"/></Sequence>
</LatticeLevel>
<LatticeLevel level="3" numberOfSequences="0"/>
</SeqAssociationLattice>
</SequentialAssociationLattice>
)";

const OrbScore::PluginLoader& module() {
  static const OrbScore::PluginLoader loader(ORBSEQ_MODULE);
  return loader;
}

std::string replaced(std::string_view document, std::string_view find, std::string_view with) {
  std::string text(document);
  const std::size_t place = text.find(find);
  EXPECT_NE(place, std::string::npos) << "nothing to replace: " << find;
  return place == std::string::npos ? text : text.replace(place, find.size(), with);
}

std::shared_ptr<OrbScore::ScoreModel> modelOf(const std::string& document) {
  return module().LoadModel(OrbScore::SafeDocument::Parse(document, "small.xml"));
}

void PrintTo(const Answer& answer, std::ostream* os) {
  *os << "item " << answer.item << std::hexfloat << " confidence " << answer.confidence
      << " support " << answer.support << " cause " << answer.cause << std::defaultfloat;
}

std::vector<Answer> ask(const OrbScore::ScoreModel& model, const std::string& history, Mode mode) {
  OrbScore::ScoreCaseRecord record;
  record.SetText("sequence", history);
  if (mode != Mode::kCurrent) record.SetText("returnType", "futureItems");
  if (mode == Mode::kFutureAllBeginnings) record.SetText("fromCurrent", "");
  OrbScore::ScoreResult* raw = nullptr;
  EXPECT_TRUE(model.GetScore(&record, raw, false).IsOK());
  const std::unique_ptr<OrbScore::ScoreResult> result(raw);
  std::vector<Answer> answers;
  // By type across the boundary of the loaded library.
  const auto* const list = dynamic_cast<const ItemList*>(result->GetPrediction());
  EXPECT_NE(list, nullptr);
  if (list != nullptr)
    for (const auto& one : list->GetVectorValue())
      answers.push_back({one.GetItem(), one.GetConfidence(), one.GetSupport(), one.GetCause()});
  return answers;
}

}  // namespace test
