#include "xml/XMLElement.h"

#include <cmath>
#include <ostream>

#include "xml/WriteTree.h"
#include "xml/XMLAttribute.h"
#include "xml/XMLString.h"
#include "xml/XMLUtil.h"

namespace OrbXML_830 {

// Where an element writes: a string, or a stream with or without conversion.
class XMLElement::Sink {
 public:
  explicit Sink(std::string& out) : out_(&out) {}
  Sink(std::ostream& os, bool utf8) : os_(&os), utf8_(utf8) {}

  void text(const std::string& text) {
    if (out_ != nullptr)
      *out_ += text;
    else if (utf8_)
      WriteUTF(*os_, text);
    else
      Write(*os_, text);
  }

  void node(const XMLInterface& node, ExportFormat& format) {
    if (out_ != nullptr)
      node.ToString(*out_, format);
    else
      node.ToStream(*os_, format, utf8_);
  }

 private:
  std::string* out_ = nullptr;
  std::ostream* os_ = nullptr;
  bool utf8_ = false;
};

XMLElement* XMLElement::Create(const std::string& name) { return new XMLElement(name); }

XMLElement::XMLElement(const std::string& name) : name_(name) {}

// Attributes first, then children.
XMLElement::~XMLElement() { attributes_.clear(); }

int XMLElement::ToString(std::string& out, ExportFormat& format) const {
  Sink sink(out);
  write(sink, format);
  return 0;
}

int XMLElement::ToStream(std::ostream& os, ExportFormat& format, bool utf8) const {
  Sink sink(os, utf8);
  write(sink, format);
  return 0;
}

void XMLElement::write(Sink& sink, ExportFormat& format) const {
  const std::string tabs = XMLUtil::GetTabs(format.GetLevel());
  std::string buffer;
  if (format.IsNewParagraph()) buffer += XMLUtil::ROWSEP;
  if (format.HasIndentation()) buffer += tabs;
  sink.text(buffer + XMLUtil::BEGIN_ELEMENT + name_);

  format.EnterLevel();
  std::string prefix = XMLUtil::SPACE;
  if (format.HasIndentation()) prefix += XMLUtil::GetTabs(format.GetLevel());
  for (const auto& attribute : attributes_) {
    sink.text(prefix);
    sink.node(*attribute, format);
  }
  if (children_.empty()) {
    format.LeaveLevel();
    sink.text("/>");
  } else {
    sink.text(XMLUtil::END_ELEMENT);
    for (const auto& child : children_) sink.node(*child, format);
    format.LeaveLevel();
    // On a new line unless the last child was a text; a child may have changed the layout.
    buffer = format.IsNewParagraph() ? XMLUtil::ROWSEP : "";
    if (format.HasIndentation()) buffer += tabs;
    sink.text(buffer + "</" + name_ + XMLUtil::END_ELEMENT);
  }
  format.SetIsNewParagraph(true);
}

XMLElement* XMLElement::Clone() const {
  std::unique_ptr<XMLElement> copy(Create(name_));
  for (const auto& attribute : attributes_) copy->AddAttribute(attribute->Clone());
  copy->children_.reserve(children_.size());  // so that no clone is lost when there is no room
  for (const auto& child : children_) copy->children_.emplace_back(child->Clone());
  return copy.release();
}

template <class Node>
int XMLElement::addChild(Node* node) {
  std::unique_ptr<XMLInterface> owned(node);
  children_.push_back(std::move(owned));
  return static_cast<int>(children_.size());
}

int XMLElement::AddElement(XMLString* text) { return addChild(text); }

int XMLElement::AddElement(XMLElement* child) { return addChild(child); }

void XMLElement::AddAttribute(XMLAttribute* attribute) {
  std::unique_ptr<XMLAttribute> owned(attribute);
  attributes_.push_back(std::move(owned));
}

void XMLElement::AddAttribute(const std::string& name, const std::string& value) {
  AddAttribute(XMLAttribute::Create(name, value));
}

// Deliberate: a value that is not finite is left out.
void XMLElement::AddAttribute(const std::string& name, double value) {
  AddAttribute(name, value, false);
}

void XMLElement::AddAttribute(const std::string& name, double value, bool fixedText) {
  if (std::isfinite(value)) AddAttribute(XMLAttribute::Create(name, value, fixedText));
}

}  // namespace OrbXML_830
