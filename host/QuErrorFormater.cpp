#include "scoring/hostapi/QuErrorFormater.h"

#include "host/oneLine.h"

namespace OrbScore {

std::string QuErrorFormater::Format(std::string_view what, std::string_view where,
                                    std::string_view detail) {
  std::string line;
  for (const std::string_view part : {what, where, detail}) {
    if (part.empty()) continue;
    if (!line.empty()) line += ": ";
    line += part;
  }
  return line;
}

std::string QuErrorFormater::Quote(std::string_view text) {
  constexpr std::size_t kMaxBytes = 64;
  return oneLine(text, kMaxBytes, /*quoted=*/true);
}

std::string QuErrorFormater::Outside(std::int64_t lowest, std::int64_t highest) {
  return "outside " + std::to_string(lowest) + ".." + std::to_string(highest);
}

}  // namespace OrbScore
