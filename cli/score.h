// The command `orbseq score`: histories in, ranked items out.

#ifndef CLI_SCORE_H_
#define CLI_SCORE_H_

#include "cli/ScoreOptions.h"
#include "cli/exitStatus.h"

namespace CLI {
class App;
}

namespace orbseq {

// Adds the command to the program's command line and answers its part of it, which the caller
// keeps no longer than `program`. Parsing fills `options`, which must live until then.
CLI::App* addScoreCommand(CLI::App& program, ScoreOptions& options);

// Does what the options say. Throws what goes wrong; see reportCurrentException().
ExitStatus runScore(const ScoreOptions& options);

}  // namespace orbseq

#endif  // CLI_SCORE_H_
