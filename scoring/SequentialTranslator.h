// The module's translator: turns the DOM of a lattice document into a scoring model.
//
// It reads the lattice vocabulary (scoring/LatticeReader.h) below the first SeqAssociationLattice
// inside the model element, or below the model element itself where there is none. Labels and
// version are handed out in the encoding that the caller names.
//
// Lifecycle. A translator may parse any number of times; each call makes a new model, which the
// caller owns and which keeps nothing of the document or the translator.
//
// Threads: one call at a time on one translator.

#ifndef SCORING_SEQUENTIALTRANSLATOR_H_
#define SCORING_SEQUENTIALTRANSLATOR_H_

#include <cstdint>
#include <string>

#include "common/OrbExport.h"
#include "scoring/hostapi/BaseTranslator.h"

namespace SEQUENCE_NAMESPACE_800 {
class HashtableSQPair;
}

namespace OrbQuillon_830 {

class SequentialAssocModel;

class ORBSEQ_EXPORT SequentialTranslator : public OrbScore::BaseTranslator {
 public:
  SequentialTranslator();
  ~SequentialTranslator() override;  // frees neither the model nor its tables: they have owners

  // Throws QuException for a document that is refused, naming the place; then everything built for
  // it is freed and what was parsed before still stands. Where memory runs out, std::bad_alloc or
  // SeqExceptions::DictionaryFailure comes out, with the same left behind. Traces "Enter:" and
  // "Exit:" with its name at level 1, the latter on success only.
  OrbScore::ScoreModel* ParseFromTree(OrbScore::DOMElement* modelElement,
                                      const std::string& encoding) override;

 private:
  SEQUENCE_NAMESPACE_800::HashtableSQPair** levelTables_ = nullptr;  // the last model's
  SequentialAssocModel* model_ = nullptr;                            // the last one made
  std::int32_t numberOfSequences_ = 0;
  std::int32_t maxSequenceSize_ = 0;  // the highest lattice level; hidden from look-ups
};

}  // namespace OrbQuillon_830

#endif  // SCORING_SEQUENTIALTRANSLATOR_H_
