#include "scoring/hostapi/ScoreDictionary.h"

namespace OrbScore {

// Out of line, so that the type information stands in this library alone.
ScoreDictionary::~ScoreDictionary() = default;

}  // namespace OrbScore
