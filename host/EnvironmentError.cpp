#include "host/EnvironmentError.h"

namespace OrbScore {

EnvironmentError::EnvironmentError(const std::string& message) : QuException(message) {}

// Out of line, so that the type information stands in this library alone.
EnvironmentError::~EnvironmentError() = default;

}  // namespace OrbScore
