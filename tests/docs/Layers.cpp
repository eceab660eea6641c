#include "tests/docs/Layers.h"

#include <fstream>
#include <regex>
#include <sstream>

namespace test {

namespace fs = std::filesystem;

Layers::Layers(const fs::path& rules) {
  std::ifstream in(rules);
  for (std::string line; std::getline(in, line);) {
    const std::size_t colon = line.find(':');
    if (line.empty() || line[0] == '#' || colon == std::string::npos) continue;
    std::set<std::string>& rooms = allowed_[line.substr(0, colon)];
    std::istringstream rest(line.substr(colon + 1));
    for (std::string room; rest >> room;) rooms.insert(room);
  }
}

// The longest room that the path begins with.
std::string Layers::roomOf(const std::string& path) const {
  std::string best;
  for (const auto& [room, rooms] : allowed_)
    if (path.starts_with(room + "/") && room.size() > best.size()) best = room;
  return best;
}

void Layers::check(const fs::path& root, const fs::path& file,
                   std::vector<std::string>& found) const {
  static const std::regex include("^\\s*#\\s*include\\s*[\"<]([^\">]+)[\">]");
  const std::string name = fs::relative(file, root).generic_string();
  const std::string room = roomOf(name);
  std::ifstream in(file);
  int number = 0;
  for (std::string line; std::getline(in, line);) {
    ++number;
    std::smatch match;
    if (!std::regex_search(line, match, include)) continue;
    const std::string target = roomOf(match[1]);
    if (target.empty() || target == room || allowed_.at(room).contains(target)) continue;
    found.push_back(name + ":" + std::to_string(number) + ": " + room + " may not include " +
                    match[1].str());
  }
}

std::vector<std::string> Layers::violations(const fs::path& root) const {
  std::vector<std::string> found;
  for (const auto& [room, rooms] : allowed_) {
    if (!fs::is_directory(root / room)) {
      found.push_back(room + ": no such folder");
      continue;
    }
    for (const auto& entry : fs::recursive_directory_iterator(root / room)) {
      const std::string extension = entry.path().extension().string();
      if (!entry.is_regular_file() || (extension != ".h" && extension != ".cpp")) continue;
      if (roomOf(fs::relative(entry.path(), root).generic_string()) == room)
        check(root, entry.path(), found);
    }
  }
  return found;
}

}  // namespace test
