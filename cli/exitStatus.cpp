#include "cli/exitStatus.h"

#include <new>
#include <string>

#include "cli/messages.h"
#include "host/EnvironmentError.h"
#include "io/IoError.h"
#include "io/process.h"
#include "mining/MinerOptions.h"
#include "scoring/hostapi/QuException.h"
#include "sequence/errorText.h"

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
  } catch (const InputError& error) {
    text = error.what();
    return ExitStatus::kInput;
  } catch (const FileError& error) {
    text = error.what();
    return ExitStatus::kEnvironment;
  } catch (const OrbScore::EnvironmentError& error) {
    text = error.what();
    return ExitStatus::kEnvironment;
  } catch (const MinerStopped& error) {
    text = error.what();
    return ExitStatus::kEnvironment;
  } catch (const OrbScore::QuException& error) {
    text = error.what();
    return ExitStatus::kInput;
  } catch (const std::bad_alloc&) {
    text = "out of memory";
    return ExitStatus::kEnvironment;
  } catch (...) {
    text = "internal error: " + describeCurrentException();
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
