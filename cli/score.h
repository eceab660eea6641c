// The command `orbseq score`: histories in, ranked items out.

#ifndef CLI_SCORE_H_
#define CLI_SCORE_H_

#include "cli/ScoreOptions.h"
#include "cli/exitStatus.h"

namespace CLI {
class App;
}

namespace orbseq {

// Adds the command to the program's command line, which owns what is answered: whether it was
// parsed tells whether this command was asked for. Parsing fills `options`, which the caller keeps
// as long as `program`.
CLI::App* addScoreCommand(CLI::App& program, ScoreOptions& options);

// Does what the options say. Throws what goes wrong; see reportCurrentException().
ExitStatus runScore(const ScoreOptions& options);

}  // namespace orbseq

#endif  // CLI_SCORE_H_
