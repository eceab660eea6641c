// What the program says to people, on standard error.

#ifndef CLI_MESSAGES_H_
#define CLI_MESSAGES_H_

#include <string_view>

namespace orbseq {

// Writes "orbseq: TEXT" as exactly one line: control characters of the text are escaped (\x0A). A
// closed or full standard error is no failure: there is nobody left to tell.
void printMessage(std::string_view text);

}  // namespace orbseq

#endif  // CLI_MESSAGES_H_
