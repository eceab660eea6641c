// The exception of the host and of its plug-ins: one line of text, "what: where: detail".
//
// Thrown by value, for a document that is refused, a number that does not convert, a plug-in that
// does not load. The text is UTF-8 without control characters; make it with QuErrorFormater.

#ifndef SCORING_HOSTAPI_QUEXCEPTION_H_
#define SCORING_HOSTAPI_QUEXCEPTION_H_

#include <stdexcept>
#include <string>

#include "scoring/hostapi/HostExport.h"

namespace OrbScore {

class ORBSCORE_EXPORT QuException : public std::runtime_error {
 public:
  explicit QuException(const std::string& message);
  ~QuException() override;
};

}  // namespace OrbScore

#endif  // SCORING_HOSTAPI_QUEXCEPTION_H_
