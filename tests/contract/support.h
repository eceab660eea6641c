// What the contract tests share: the loaded module, a small document, and asking a model.

#ifndef TESTS_CONTRACT_SUPPORT_H_
#define TESTS_CONTRACT_SUPPORT_H_

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/PluginLoader.h"
#include "scoring/hostapi/ScoreModel.h"

namespace test {

// The module, loaded once for the program.
const OrbScore::PluginLoader& module();

// A lattice of 10 customers, 8 of which hold item 7 ("tea"), 5 item 9, 4 both at once, and 2 item 7
// and later item 9. Its highest level, 3, is empty.
extern const std::string_view kSmallDocument;

// The document with the first occurrence of `find` replaced. Fails the test when there is none.
std::string replaced(std::string_view document, std::string_view find, std::string_view with);

std::shared_ptr<OrbScore::ScoreModel> modelOf(const std::string& document);

struct Answer {
  std::int32_t item;
  double confidence;
  double support;
  double cause;

  friend bool operator==(const Answer&, const Answer&) = default;
};
void PrintTo(const Answer& answer, std::ostream* os);

enum class Mode { kCurrent, kFuture, kFutureAllBeginnings };

// The ranked answers for a history, at most 20.
std::vector<Answer> ask(const OrbScore::ScoreModel& model, const std::string& history, Mode mode);

}  // namespace test

#endif  // TESTS_CONTRACT_SUPPORT_H_
