// Builds the one line of a QuException.
//
// All operations are static and free of state: any thread may call them.

#ifndef SCORING_HOSTAPI_QUERRORFORMATER_H_
#define SCORING_HOSTAPI_QUERRORFORMATER_H_

#include <cstdint>
#include <string>
#include <string_view>

#include "scoring/hostapi/HostExport.h"

namespace OrbScore {

class ORBSCORE_EXPORT QuErrorFormater {
 public:
  QuErrorFormater() = delete;

  // "what: where: detail"; an empty part is left out together with its colon.
  static std::string Format(std::string_view what, std::string_view where, std::string_view detail);

  // `text` in double quotes, fit for one line: control characters, quotes and backslashes are
  // escaped (\n, \x1B), and what goes beyond 64 bytes is replaced by "...".
  static std::string Quote(std::string_view text);

  // "outside 1..12", the way a range is told everywhere.
  static std::string Outside(std::int64_t lowest, std::int64_t highest);
};

}  // namespace OrbScore

#endif  // SCORING_HOSTAPI_QUERRORFORMATER_H_
