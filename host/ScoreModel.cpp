#include "scoring/hostapi/ScoreModel.h"

namespace OrbScore {

// Out of line, so that the type information stands in this library alone.
ScoreModel::~ScoreModel() = default;

}  // namespace OrbScore
