// A document's elements as plain values, read by a small parser for tests, which shares nothing
// with the writers. It knows what they produce: elements and attributes, no texts, no comments.
//
// Attribute values are kept as they stand, references undecoded. Anything malformed throws
// std::invalid_argument with the offset.

#ifndef TESTS_LATTICE_XMLNODE_H_
#define TESTS_LATTICE_XMLNODE_H_

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orbseq::test {

struct XmlNode {
  std::string name;
  std::vector<std::pair<std::string, std::string>> attributes;
  std::vector<XmlNode> children;

  bool has(std::string_view attribute) const;
  std::string get(std::string_view attribute) const;  // "-" when there is none
  // All elements below, at any depth, in document order; the node itself is not among them.
  std::vector<const XmlNode*> below(std::string_view element) const;
  // The first of them. Throws std::out_of_range when there is none.
  const XmlNode& first(std::string_view element) const;
  // The attribute of each element of that name below.
  std::vector<std::string> all(std::string_view element, std::string_view attribute) const;
};

struct XmlDocument {
  std::string docType;  // the name that the DOCTYPE declares; empty when there is no DOCTYPE
  XmlNode root;
};

XmlDocument parseXml(std::string_view text);

}  // namespace orbseq::test

#endif  // TESTS_LATTICE_XMLNODE_H_
