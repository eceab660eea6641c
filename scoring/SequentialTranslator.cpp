#include "scoring/SequentialTranslator.h"

#include <cstddef>
#include <memory>
#include <utility>

#include "common/guards.h"
#include "document/DomPlace.h"
#include "document/LatticeReader.h"
#include "scoring/SequentialAssocModel.h"
#include "scoring/hostapi/QuException.h"
#include "scoring/hostapi/QuillonTranscoder.h"
#include "scoring/hostapi/ScoringLog.h"
#include "scoring/hostapi/VersionInfo.h"

namespace OrbQuillon_830 {

namespace {

using OrbScore::DOMElement;
using orbseq::DomPlace;
using orbseq::LatticeTables;
using SEQUENCE_NAMESPACE_800::HashtableSQPair;

constexpr int kTraceLevel = 1;
constexpr const char* kParse = "OrbQuillon_830::SequentialTranslator::ParseFromTree";

// Hands the tables over to a new model, all but the highest.
// Deliberate: look-ups end below the highest level, so its table has no owner and goes here.
std::unique_ptr<SequentialAssocModel> makeModel(LatticeTables& tables, HashtableSQPair**& array) {
  if (!tables.levels.empty()) tables.levels.back().reset();
  auto slots = std::make_unique<HashtableSQPair*[]>(tables.levels.size());
  for (std::size_t i = 0; i < tables.levels.size(); ++i) slots[i] = tables.levels[i].get();
  auto model = std::make_unique<SequentialAssocModel>(slots.get(), tables.maxSequenceSize);
  for (auto& table : tables.levels) static_cast<void>(table.release());
  array = slots.release();
  return model;
}

}  // namespace

SequentialTranslator::SequentialTranslator() = default;

SequentialTranslator::~SequentialTranslator() = default;

OrbScore::ScoreModel* SequentialTranslator::ParseFromTree(DOMElement* modelElement,
                                                          const std::string& encoding) {
  OrbScore::ScoringLog& log = OrbScore::ScoringLog::GetInstance();
  log.TraceText(kTraceLevel, "Enter:%s", kParse);
  if (modelElement == nullptr && orbseq::guarded("document.no element"))
    throw OrbScore::QuException("lattice refused: no model element");
  CreateTranscoder(encoding);
  const DomPlace document("document element", GetRootElt(modelElement));
  const OrbScore::VersionInfo version(GetTranscoder().transcodeTo(document.text(u"version")));
  LatticeTables tables = orbseq::readLattice(orbseq::latticeIn(modelElement), GetTranscoder());

  HashtableSQPair** array = nullptr;
  std::unique_ptr<SequentialAssocModel> model = makeModel(tables, array);
  model->SetScoreDictionary(tables.labels.release());
  model->SetVersionInfo(version);

  levelTables_ = array;
  model_ = model.release();
  numberOfSequences_ = tables.numberOfSequences;
  maxSequenceSize_ = tables.maxSequenceSize;
  log.TraceText(kTraceLevel, "Exit:%s", kParse);
  return model_;
}

}  // namespace OrbQuillon_830
