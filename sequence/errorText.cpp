#include "sequence/errorText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <exception>
#include <memory>
#include <new>

#include "common/OrbStatus.h"
#include "sequence/SeqExceptions.h"

namespace orbseq {

namespace {

using SEQUENCE_NAMESPACE_800::SeqExceptions;

std::string textOfCurrentException() {
  try {
    throw;
  } catch (SeqExceptions::IOException* pointer) {
    const std::unique_ptr<SeqExceptions::IOException> owned(pointer);
    return owned ? owned->what() : "input or output failed";
  } catch (const OrbCommon_830::OrbStatus& status) {
    return "status " + std::to_string(status.GetErrorCode()) +
           (status.IsWarning() ? " (warning)" : " (error)") + ", datum " +
           std::to_string(status.GetDiscreteDatum(0));
  } catch (const SeqExceptions::DictionaryFailure& failure) {
    return failure.what();
  } catch (const std::bad_alloc&) {
    return "out of memory";
  } catch (const std::exception& exception) {
    return exception.what();
  } catch (...) {
    return "unknown failure";
  }
}

}  // namespace

std::string describeCurrentException() {
  std::string text = textOfCurrentException();
  std::replace(text.begin(), text.end(), '\n', ' ');
  return text;
}

std::string offsetText(std::uint64_t offset) {
  std::array<char, 16> digits;
  const auto end = std::to_chars(digits.begin(), digits.end(), offset, 16).ptr;
  std::string text(digits.begin(), end);
  std::ranges::transform(text, text.begin(),
                         [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
  return "offset 0x" + text;
}

}  // namespace orbseq
