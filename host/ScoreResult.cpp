#include "scoring/hostapi/ScoreResult.h"

namespace OrbScore {

// Out of line, so that the type information stands in this library alone.
ScoreResult::~ScoreResult() = default;

}  // namespace OrbScore
