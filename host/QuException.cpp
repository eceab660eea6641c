#include "scoring/hostapi/QuException.h"

namespace OrbScore {

QuException::QuException(const std::string& message) : std::runtime_error(message) {}

// Out of line, so that the type information stands in this library alone.
QuException::~QuException() = default;

}  // namespace OrbScore
