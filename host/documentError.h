// The one form of every error about a document.

#ifndef HOST_DOCUMENTERROR_H_
#define HOST_DOCUMENTERROR_H_

#include <string>
#include <string_view>

#include "host/TextPosition.h"
#include "scoring/hostapi/QuException.h"

namespace OrbScore {

// "name:line:column: what: detail"; an empty detail is left out. All parts must be fit for one
// line already.
QuException documentError(const std::string& name, TextPosition at, std::string_view what,
                          std::string_view detail = {});

// The text of a parser's message, in UTF-8 on one line, cut when it is very long.
std::string messageText(const char16_t* message);

// Requires an exception in flight. Throws it again: as it is, unless it is one of the parser's,
// which comes out as QuException "what: detail", or as std::bad_alloc where memory ran out.
[[noreturn]] void rethrowParserError(std::string_view what);

}  // namespace OrbScore

#endif  // HOST_DOCUMENTERROR_H_
