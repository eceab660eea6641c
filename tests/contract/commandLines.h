// What a command of the shell prints.

#ifndef TESTS_CONTRACT_COMMANDLINES_H_
#define TESTS_CONTRACT_COMMANDLINES_H_

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace test {

// Its lines, without their ends; none when it cannot be run.
inline std::vector<std::string> linesOf(const std::string& command) {
  std::vector<std::string> lines;
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
  if (!pipe) return lines;
  char buffer[8192];
  while (std::fgets(buffer, sizeof buffer, pipe.get()) != nullptr) {
    lines.emplace_back(buffer);
    if (!lines.back().empty() && lines.back().back() == '\n') lines.back().pop_back();
  }
  return lines;
}

}  // namespace test

#endif  // TESTS_CONTRACT_COMMANDLINES_H_
