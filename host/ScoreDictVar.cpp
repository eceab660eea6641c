#include "scoring/hostapi/ScoreDictVar.h"

namespace OrbScore {

// Out of line, so that the type information stands in this library alone.
ScoreDictVar::~ScoreDictVar() = default;

}  // namespace OrbScore
