// The options that bound what a customer's history may hold, and what the search for its answers
// may take.

#ifndef CLI_CASELIMITOPTIONS_H_
#define CLI_CASELIMITOPTIONS_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "common/Limits.h"

namespace CLI {
class App;
}

namespace orbseq {

struct CaseLimitOptions {
  std::string limits = "none";  // none or strangers
  // In the place of those.
  std::optional<std::size_t> textBytes;
  std::optional<std::size_t> sets;
  std::optional<std::size_t> items;
  std::optional<std::uint64_t> steps;
};

// `options` must outlive the parsing.
void addCaseLimitOptions(CLI::App& command, CaseLimitOptions& options);

CaseLimits limitsOf(const CaseLimitOptions& options) noexcept;
bool isLimited(const CaseLimitOptions& options) noexcept;

}  // namespace orbseq

#endif  // CLI_CASELIMITOPTIONS_H_
