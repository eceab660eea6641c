// Answers one history after the other.
//
// Threads: one at a time on one scorer; scorers may share a model.

#ifndef CLI_CASESCORER_H_
#define CLI_CASESCORER_H_

#include <string>

#include "cli/Answers.h"
#include "io/CustomerHistory.h"

namespace orbseq {

class CaseScorer {
 public:
  virtual ~CaseScorer() = default;

  // The history's answers; valid until the next call. `file` and `history.row` name the place in
  // errors.
  virtual Answers score(const std::string& file, const CustomerHistory& history) = 0;
};

}  // namespace orbseq

#endif  // CLI_CASESCORER_H_
