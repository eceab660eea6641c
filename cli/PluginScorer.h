// Answers histories with a model that a plug-in made.
//
// One case record and one result are used for every history. Nothing that the plug-in throws comes
// out as it is, since its type may go with the plug-in: a refused history is InputError, lack of
// memory std::bad_alloc, everything else std::logic_error.

#ifndef CLI_PLUGINSCORER_H_
#define CLI_PLUGINSCORER_H_

#include <memory>
#include <string>

#include "cli/CaseScorer.h"
#include "cli/ScoreOptions.h"
#include "scoring/hostapi/ScoreCaseRecord.h"

namespace OrbScore {
class ScoreModel;
class ScoreResult;
}  // namespace OrbScore

namespace orbseq {

class PluginScorer final : public CaseScorer {
 public:
  // Keeps the model as long as it lives. Of the options, returnType, maxReturn and allPrefixes
  // are read.
  PluginScorer(std::shared_ptr<const OrbScore::ScoreModel> model, const ScoreOptions& options);
  ~PluginScorer() override;
  PluginScorer(const PluginScorer&) = delete;
  PluginScorer& operator=(const PluginScorer&) = delete;

  // Throws OrbScore::EnvironmentError when the plug-in's answer is no list.
  Answers score(const std::string& file, const CustomerHistory& history) override;

 private:
  Answers scoreRecord();

  std::shared_ptr<const OrbScore::ScoreModel> model_;
  OrbScore::ScoreCaseRecord record_;
  OrbScore::ScoreResult* result_ = nullptr;  // owned; the model refills or replaces it
};

}  // namespace orbseq

#endif  // CLI_PLUGINSCORER_H_
