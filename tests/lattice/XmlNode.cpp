#include "tests/lattice/XmlNode.h"

#include <cstddef>
#include <stdexcept>

namespace orbseq::test {

namespace {

class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  XmlDocument document() {
    XmlDocument document;
    if (take("<?")) skipPast("?>");
    space();
    if (take("<!DOCTYPE ")) {
      document.docType = name();
      skipPast(">");
    }
    space();
    document.root = element();
    space();
    if (position_ != text_.size()) fail("text behind the root");
    return document;
  }

 private:
  [[noreturn]] void fail(const std::string& what) const {
    throw std::invalid_argument(what + " at offset " + std::to_string(position_));
  }

  bool take(std::string_view token) {
    if (text_.substr(position_, token.size()) != token) return false;
    position_ += token.size();
    return true;
  }

  void expect(std::string_view token) {
    if (!take(token)) fail("no " + std::string(token));
  }

  void skipPast(std::string_view token) {
    const std::size_t found = text_.find(token, position_);
    if (found == std::string_view::npos) fail("no " + std::string(token));
    position_ = found + token.size();
  }

  void space() {
    while (position_ < text_.size() && std::string_view(" \t\r\n").find(text_[position_]) != npos)
      ++position_;
  }

  std::string upTo(std::string_view signs) {
    const std::size_t found = text_.find_first_of(signs, position_);
    if (found == npos || found == position_) fail("nothing before one of " + std::string(signs));
    const std::string part(text_.substr(position_, found - position_));
    position_ = found;
    return part;
  }

  std::string name() { return upTo(" \t\r\n=/><\"&"); }

  std::pair<std::string, std::string> attribute() {
    std::string attributeName = name();
    expect("=\"");
    const std::size_t end = text_.find('"', position_);
    if (end == npos) fail("no closing quote");
    std::string value(text_.substr(position_, end - position_));
    if (value.find_first_of("<\n\t\r") != std::string::npos) fail("unescaped sign");
    position_ = end + 1;
    return {std::move(attributeName), std::move(value)};
  }

  XmlNode element() {
    XmlNode node;
    expect("<");
    node.name = name();
    for (space(); !take("/>"); space()) {
      if (take(">")) {
        content(node);
        return node;
      }
      auto added = attribute();
      if (node.has(added.first)) fail("attribute twice");
      node.attributes.push_back(std::move(added));
    }
    return node;
  }

  void content(XmlNode& node) {
    for (space(); !take("</"); space()) node.children.push_back(element());
    expect(node.name);
    expect(">");
  }

  static constexpr std::size_t npos = std::string_view::npos;

  std::string_view text_;
  std::size_t position_ = 0;
};

}  // namespace

bool XmlNode::has(std::string_view attribute) const {
  for (const auto& [given, value] : attributes)
    if (given == attribute) return true;
  return false;
}

std::string XmlNode::get(std::string_view attribute) const {
  for (const auto& [given, value] : attributes)
    if (given == attribute) return value;
  return "-";
}

std::vector<const XmlNode*> XmlNode::below(std::string_view element) const {
  std::vector<const XmlNode*> found;
  for (const XmlNode& child : children) {
    if (child.name == element) found.push_back(&child);
    const auto deeper = child.below(element);
    found.insert(found.end(), deeper.begin(), deeper.end());
  }
  return found;
}

const XmlNode& XmlNode::first(std::string_view element) const { return *below(element).at(0); }

std::vector<std::string> XmlNode::all(std::string_view element, std::string_view attribute) const {
  std::vector<std::string> values;
  for (const XmlNode* node : below(element)) values.push_back(node->get(attribute));
  return values;
}

XmlDocument parseXml(std::string_view text) { return Parser(text).document(); }

}  // namespace orbseq::test
