#include "cli/exitStatus.h"

#include <string>
#include <utility>

#include "cli/messages.h"
#include "io/failure.h"
#include "io/process.h"

namespace orbseq {

namespace {

ExitStatus statusOfCurrentException(std::string& text) {
  try {
    throw;
  } catch (const UsageError& error) {
    text = error.what();
    return ExitStatus::kUsage;
  } catch (const Interrupted& error) {
    text = error.what();
    return ExitStatus::kInterrupted;
  } catch (...) {
    Failure failure = currentFailure();
    text = std::move(failure.text);
    if (failure.kind == FailureKind::kInput) return ExitStatus::kInput;
    if (failure.kind == FailureKind::kEnvironment) return ExitStatus::kEnvironment;
    text.insert(0, "internal error: ");
    return ExitStatus::kBug;
  }
}

}  // namespace

ExitStatus reportCurrentException() noexcept {
  try {
    std::string text;
    ExitStatus status = statusOfCurrentException(text);
    if (interrupted()) {
      text = Interrupted().what();
      status = ExitStatus::kInterrupted;
    }
    printMessage(text);
    return status;
  } catch (...) {
    return ExitStatus::kEnvironment;  // no memory for the message
  }
}

}  // namespace orbseq
