// A file or a plug-in that cannot be opened or read, as opposed to content that is refused.
//
// A program that tells the two apart catches this one first: it means "look at the machine", a
// plain QuException means "look at the document".

#ifndef HOST_ENVIRONMENTERROR_H_
#define HOST_ENVIRONMENTERROR_H_

#include <string>

#include "scoring/hostapi/QuException.h"

namespace OrbScore {

class ORBSCORE_EXPORT EnvironmentError : public QuException {
 public:
  explicit EnvironmentError(const std::string& message);
  ~EnvironmentError() override;
};

}  // namespace OrbScore

#endif  // HOST_ENVIRONMENTERROR_H_
