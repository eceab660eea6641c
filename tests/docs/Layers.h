// The floors: which room may include the headers of which other, checked against the sources.

#ifndef TESTS_DOCS_LAYERS_H_
#define TESTS_DOCS_LAYERS_H_

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace test {

class Layers {
 public:
  // Reads lines of the form "room: room room"; "#" begins a comment.
  explicit Layers(const std::filesystem::path& rules);

  // "file:line: room may not include header" for every include that the rules forbid, in files
  // below the rooms' folders, and a line for every room that the rules name and `root` lacks.
  std::vector<std::string> violations(const std::filesystem::path& root) const;

  std::size_t rooms() const { return allowed_.size(); }

 private:
  std::string roomOf(const std::string& path) const;  // empty for what is in no room
  void check(const std::filesystem::path& root, const std::filesystem::path& file,
             std::vector<std::string>& found) const;

  std::map<std::string, std::set<std::string>> allowed_;
};

}  // namespace test

#endif  // TESTS_DOCS_LAYERS_H_
