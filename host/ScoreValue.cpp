#include "scoring/hostapi/ScoreValue.h"

namespace OrbScore {

// Out of line, so that the type information stands in this library alone.
ScoreValue::~ScoreValue() = default;

}  // namespace OrbScore
