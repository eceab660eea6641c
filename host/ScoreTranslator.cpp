#include "scoring/hostapi/ScoreTranslator.h"

namespace OrbScore {

// Out of line, so that the type information stands in this library alone.
ScoreTranslator::~ScoreTranslator() = default;

}  // namespace OrbScore
