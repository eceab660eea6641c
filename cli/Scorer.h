// Scores histories with a model that a plug-in made.
//
// One case record and one result are used for every history. Nothing that the plug-in throws comes
// out as it is, since its type may go with the plug-in: a refused history is InputError, lack of
// memory std::bad_alloc, everything else std::logic_error.
//
// Threads: one at a time on one scorer; scorers may share a model.

#ifndef CLI_SCORER_H_
#define CLI_SCORER_H_

#include <memory>
#include <string>

#include "cli/Answers.h"
#include "cli/ScoreOptions.h"
#include "io/CustomerHistory.h"
#include "scoring/hostapi/ScoreCaseRecord.h"

namespace OrbScore {
class ScoreModel;
class ScoreResult;
}  // namespace OrbScore

namespace orbseq {

class Scorer {
 public:
  // Keeps the model as long as it lives. Of the options, returnType, maxReturn and allPrefixes
  // are read.
  Scorer(std::shared_ptr<const OrbScore::ScoreModel> model, const ScoreOptions& options);
  ~Scorer();
  Scorer(const Scorer&) = delete;
  Scorer& operator=(const Scorer&) = delete;

  // Makes the history the case to score, without scoring it.
  void prepare(const CustomerHistory& history);

  // The prepared history's answers; valid until the next call. `file` and `history.row` name the
  // place in errors. Throws OrbScore::EnvironmentError when the plug-in's answer is no list.
  Answers score(const std::string& file, const CustomerHistory& history);

 private:
  Answers scoreRecord();

  std::shared_ptr<const OrbScore::ScoreModel> model_;
  OrbScore::ScoreCaseRecord record_;
  OrbScore::ScoreResult* result_ = nullptr;  // owned; the model refills or replaces it
};

}  // namespace orbseq

#endif  // CLI_SCORER_H_
