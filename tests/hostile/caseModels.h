// The models that hostile cases are put to, and what they answer.

#ifndef TESTS_HOSTILE_CASEMODELS_H_
#define TESTS_HOSTILE_CASEMODELS_H_

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "scoring/VectorValue.h"
#include "scoring/hostapi/ScoreCaseRecord.h"
#include "scoring/hostapi/ScoreDictVar.h"
#include "scoring/hostapi/ScoreModel.h"
#include "scoring/hostapi/ScoreResult.h"
#include "sequence/SeqConsequentDescriptor.h"
#include "tests/hostile/documents.h"

namespace orbseq::test {

// The small document's, with the items 1 and 2 in place of 7 and 9: 10 customers, 8 of which hold
// item 1, 5 item 2, 4 both at once, and 2 item 1 and later item 2.
inline std::shared_ptr<OrbScore::ScoreModel> caseModel() {
  return ::test::modelOf(
      smallDocument({{"value=\"7\"", "value=\"1\""}, {"value=\"9\"", "value=\"2\""}}));
}

// Item 1 with one extension for each of the items 2 to `items` in a later set, so that an answer
// has items - 1 entries, from the largest item on.
inline std::shared_ptr<OrbScore::ScoreModel> wideModel(int items) {
  const std::string count = std::to_string(items);
  std::string list, sets, singles, pairs, links, all;
  for (int item = 1; item <= items; ++item) {
    const std::string id = std::to_string(item);
    list += "<Item id=\"" + id + "\" value=\"" + id + "\"/>";
    sets += "<Itemset id=\"" + id + "\" numberOfItems=\"1\"><ItemRef itemRef=\"" + id +
            "\"/></Itemset>";
    all += "<AdjacentItem itemRef=\"" + id + "\" position=\"1\"/>";
    if (item == 1) continue;
    singles += "<Sequence occurrence=\"4\" numberOfSets=\"1\"><ItemsetRef itemsetRef=\"" + id +
               "\"/><SeqAdjacentList numberOfAdjacentItems=\"0\"/></Sequence>";
    pairs +=
        "<Sequence occurrence=\"2\" numberOfSets=\"2\"><ItemsetRef itemsetRef=\"1\"/>"
        "<ItemsetRef itemsetRef=\"" +
        id + "\"/><SeqAdjacentList numberOfAdjacentItems=\"0\"/></Sequence>";
    links += "<AdjacentItem itemRef=\"" + id + "\" position=\"3\"/>";
  }
  const std::string others = std::to_string(items - 1);
  return ::test::modelOf(
      "<SequentialAssociationLattice version=\"1\"><SeqAssociationLattice><SeqInputStats "
      "maxSequenceSize=\"3\" numberOfItems=\"" +
      count + "\" numberOfSets=\"" + count + "\" numberOfSequences=\"1\"/>" + list + sets +
      "<LatticeLevel level=\"0\" numberOfSequences=\"1\"><Sequence occurrence=\"10\" "
      "numberOfSets=\"0\"><SeqAdjacentList numberOfAdjacentItems=\"" +
      count + "\">" + all + "</SeqAdjacentList></Sequence></LatticeLevel>" +
      "<LatticeLevel level=\"1\" numberOfSequences=\"" + count +
      "\"><Sequence occurrence=\"8\" numberOfSets=\"1\"><ItemsetRef itemsetRef=\"1\"/>"
      "<SeqAdjacentList numberOfAdjacentItems=\"" +
      others + "\">" + links + "</SeqAdjacentList></Sequence>" + singles +
      "</LatticeLevel><LatticeLevel level=\"2\" numberOfSequences=\"" + others + "\">" + pairs +
      "</LatticeLevel><LatticeLevel level=\"3\" numberOfSequences=\"0\"/>"
      "</SeqAssociationLattice></SequentialAssociationLattice>");
}

using CaseItems = std::vector<std::int32_t>;

inline CaseItems itemsOf(const OrbScore::ScoreResult& result) {
  using List = OrbQuillon_830::VectorValue<SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor>;
  CaseItems items;
  for (const auto& one : dynamic_cast<const List&>(*result.GetPrediction()).GetVectorValue())
    items.push_back(one.GetItem());
  return items;
}

struct Scored {
  CaseItems items;
  std::string target;  // the name of the result's target
};

inline Scored score(const OrbScore::ScoreModel& model, const OrbScore::ScoreCaseRecord* record) {
  OrbScore::ScoreResult* raw = nullptr;
  EXPECT_TRUE(model.GetScore(record, raw, false).IsOK());
  const std::unique_ptr<OrbScore::ScoreResult> result(raw);
  return {itemsOf(*result), result->GetTarget()->GetName()};
}

inline OrbScore::ScoreCaseRecord recordOf(const std::string& history,
                                          const std::string& returnType = "") {
  OrbScore::ScoreCaseRecord record;
  record.SetText("sequence", history);
  if (!returnType.empty()) record.SetText("returnType", returnType);
  return record;
}

}  // namespace orbseq::test

#endif  // TESTS_HOSTILE_CASEMODELS_H_
