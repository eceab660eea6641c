#include "cli/messages.h"

#include <cstdio>
#include <string>

#include "cli/displayText.h"

namespace orbseq {

void printMessage(std::string_view text) {
  const std::string line = "orbseq: " + escapedControls(text) + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
  std::fflush(stderr);
}

}  // namespace orbseq
