#include "io/failure.h"

#include <exception>
#include <new>

#include "engine/Workspace.h"
#include "engine/caseText.h"
#include "engine/compiledForm.h"
#include "host/EnvironmentError.h"
#include "io/IoError.h"
#include "io/LogBuilder.h"
#include "io/historyText.h"
#include "mining/MinerOptions.h"
#include "scoring/hostapi/QuException.h"
#include "sequence/SeqExceptions.h"
#include "sequence/errorText.h"

namespace orbseq {

namespace {

using SEQUENCE_NAMESPACE_800::SeqExceptions;

template <class... Kinds>
bool isOneOf(const std::exception& exception) {
  return (... || (dynamic_cast<const Kinds*>(&exception) != nullptr));
}

FailureKind kindOf(const std::exception& exception) {
  if (isOneOf<FileError, OrbScore::EnvironmentError, MinerStopped>(exception))
    return FailureKind::kEnvironment;
  if (isOneOf<InputError, OrbScore::QuException, SeqExceptions::IOException,
              engine::CaseLimitPassed, engine::StepBudgetSpent, engine::CompiledFormError,
              HistoryTextError, LogBuilder::Full>(exception))
    return FailureKind::kInput;
  return FailureKind::kBug;
}

}  // namespace

Failure currentFailure() {
  try {
    throw;
  } catch (const std::bad_alloc&) {
    return {FailureKind::kEnvironment, "out of memory"};
  } catch (const std::exception& exception) {
    return {kindOf(exception), exception.what()};
  } catch (const SeqExceptions::IOException*) {
    return {FailureKind::kInput, describeCurrentException()};  // which deletes it
  } catch (...) {
    return {FailureKind::kBug, describeCurrentException()};
  }
}

}  // namespace orbseq
