// Objects as lines of XML: the writers.

#include <ostream>
#include <utility>

#include "common/OrbMV.h"
#include "xml/NumberFormat.h"
#include "xml/WriteTree.h"
#include "xml/XMLObj.h"
#include "xml/XMLUtil.h"

namespace OrbXML_830 {

namespace {

const char* const kRoot = "OrbXMLRoot";

std::string attribute(const char* name, const std::string& value) {
  return std::string(name) + XMLUtil::EQUAL + XMLUtil::QUOTE + XMLUtil::Escape(value) +
         XMLUtil::QUOTE;
}

std::string newLine(std::int32_t nTabs) { return XMLUtil::ROWSEP + XMLUtil::GetTabs(nTabs); }

std::string numberText(double value) { return Format(value, false, nullptr); }

}  // namespace

XMLObj::XMLObj(const std::string& name, std::int32_t nTabs) : name_(name), nTabs_(nTabs) {}

int XMLObj::StartObj(std::ostream& os) const {
  return Write(os, newLine(nTabs_) + "<Obj name=\"" + name_ + "\">");
}

int XMLObj::EndObj(std::ostream& os) const { return Write(os, newLine(nTabs_) + "</Obj>"); }

void XMLObj::writeElement(std::ostream& os, const char* element, const std::string& value) const {
  Write(os, newLine(nTabs_ + 1) + "<" + element + " " + attribute("value", value) + "/>");
}

int XMLObj::WriteSubElement(std::ostream& os, const std::string& value) const {
  writeElement(os, "String", value);
  return 0;
}

int XMLObj::WriteSubElement(std::ostream& os, const char* value) const {
  writeElement(os, "String", value);
  return 0;
}

int XMLObj::WriteSubElement(std::ostream& os, double value) const {
  writeElement(os, "Double",
               OrbCommon_830::OrbMV::IsMissing(value) ? "Missing" : numberText(value));
  return 0;
}

int XMLObj::WriteSubElement(std::ostream& os, long value) const {
  writeElement(os, "Long", numberText(static_cast<double>(value)));
  return 0;
}

int XMLObj::WriteSubElement(std::ostream& os, int value) const {
  writeElement(os, "Int", numberText(value));
  return 0;
}

int XMLObj::WriteSubElement(std::ostream& os, unsigned int value) const {
  writeElement(os, "Int", numberText(value));
  return 0;
}

int XMLObj::WriteSubElement(std::ostream& os, bool value) const {
  writeElement(os, "Int", value ? "1" : "0");
  return 0;
}

// The published form takes the text by value.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
int StartRoot(std::ostream& os, std::string copyright) {
  return Write(os, std::string("<") + kRoot + " " + attribute("copyright", copyright) + ">");
}

int EndRoot(std::ostream& os) { return Write(os, std::string("\n</") + kRoot + ">"); }

int WriteHeader(std::ostream& os, std::string copyright) {
  return StartRoot(os, std::move(copyright));
}

int EndHeader(std::ostream& os) { return EndRoot(os); }

}  // namespace OrbXML_830
