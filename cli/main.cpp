// The program `orbseq`: reads the command line and runs one command.

#include <CLI/CLI.hpp>
#include <string>

#include "cli/Output.h"
#include "cli/convert.h"
#include "cli/evaluate.h"
#include "cli/exitStatus.h"
#include "cli/explain.h"
#include "cli/generate.h"
#include "cli/inspect.h"
#include "cli/limits.h"
#include "cli/rules.h"
#include "cli/score.h"
#include "cli/train.h"
#include "io/process.h"

namespace orbseq {

namespace {

const char* const kVersion = "orbseq " ORBSEQ_VERSION;

const char* const kFooter = R"(Each command tells its options and examples: orbseq COMMAND --help

Data go to standard output, progress and messages to standard error. Exit status: 0 done, 1 wrong
usage, 2 bad input data, 3 files, plug-in or memory, 4 a bug, 130 interrupted.)";

void print(const std::string& text) {
  Output output("-");
  output.text() = text;
  output.finish();
}

// --limits, without a command.
struct CallForLimits : CLI::Success {
  CallForLimits() : CLI::Success("CallForLimits", "", CLI::ExitCodes::Success) {}
};

// Reads the command line; answers false when it only asked for help, the version or the limits,
// which are printed then.
bool parse(CLI::App& program, int argc, const char* const* argv) {
  try {
    program.parse(argc, argv);
    return true;
  } catch (const CallForLimits&) {
    print(limitsText());
    return false;
  } catch (const CLI::CallForVersion&) {
    print(std::string(kVersion) + "\n");
    return false;
  } catch (const CLI::Success&) {
    print(program.help());
    return false;
  } catch (const CLI::ParseError& error) {
    const auto chosen = program.get_subcommands();
    const std::string help =
        chosen.empty() ? "orbseq --help" : "orbseq " + chosen.front()->get_name() + " --help";
    // An unknown command is what stands first among the words that nobody took.
    const auto rest = program.remaining();
    const std::string text = chosen.empty() && !rest.empty()
                                 ? "unknown command or option " + rest.front()
                                 : error.what();
    throw UsageError(text + " (see: " + help + ")");
  }
}

ExitStatus run(int argc, const char* const* argv) {
  CLI::App program(
      "Sequential association models: what a customer takes next, and what completes "
      "a basket",
      "orbseq");
  program.set_version_flag("--version", kVersion, "Print the version and exit");
  program.set_help_flag("-h,--help", "Print this help and exit");
  program.add_flag_callback(
      "--limits", [] { throw CallForLimits(); }, "Print all limits and exit");
  program.require_subcommand(1);
  program.footer(kFooter);

  TrainOptions trainOptions;
  EvaluateOptions evaluateOptions;
  ScoreOptions scoreOptions;
  ExplainOptions explainOptions;
  RulesOptions rulesOptions;
  InspectOptions inspectOptions;
  ConvertOptions convertOptions;
  GenerateOptions generateOptions;
  const CLI::App* const train = addTrainCommand(program, trainOptions);
  const CLI::App* const evaluate = addEvaluateCommand(program, evaluateOptions);
  const CLI::App* const score = addScoreCommand(program, scoreOptions);
  const CLI::App* const explain = addExplainCommand(program, explainOptions);
  const CLI::App* const rules = addRulesCommand(program, rulesOptions);
  const CLI::App* const inspect = addInspectCommand(program, inspectOptions);
  const CLI::App* const convert = addConvertCommand(program, convertOptions);
  const CLI::App* const generate = addGenerateCommand(program, generateOptions);
  if (!parse(program, argc, argv)) return ExitStatus::kDone;
  if (train->parsed()) return runTrain(trainOptions);
  if (evaluate->parsed()) return runEvaluate(evaluateOptions);
  if (score->parsed()) return runScore(scoreOptions);
  if (explain->parsed()) return runExplain(explainOptions);
  if (rules->parsed()) return runRules(rulesOptions);
  if (inspect->parsed()) return runInspect(inspectOptions);
  if (convert->parsed()) return runConvert(convertOptions);
  if (generate->parsed()) return runGenerate(generateOptions);
  return ExitStatus::kDone;
}

}  // namespace

}  // namespace orbseq

int main(int argc, char** argv) {
  orbseq::keepStandardStreams();
  orbseq::watchForInterrupt();
  try {
    return static_cast<int>(orbseq::run(argc, argv));
  } catch (...) {
    return static_cast<int>(orbseq::reportCurrentException());
  }
}
