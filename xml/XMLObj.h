// Objects as lines of XML: a bracket for each object, and one element a line for each field.
//
//   <?xml version="1.0" encoding="UTF-8" ?>            written by whoever starts the stream,
//   <!DOCTYPE OrbXMLRoot SYSTEM "savexml.dtd">         and this line too
//   <OrbXMLRoot copyright="...">                       StartRoot
//   <Obj name="Shop">                                  XMLObj::StartObj
//       <Int value="3"/>                               XMLObj::WriteSubElement
//   </Obj>                                             XMLObj::EndObj
//   </OrbXMLRoot>                                      EndRoot, and no final line feed
//
// Every bracket and every field but the root's start begins with a line feed. The readers consume
// whole lines, look neither ahead nor back, and must be called in the order of writing.
//
// Limits. A line of more than 255 characters cannot be read. The writers do not shorten what they
// are given: a longer copyright or string makes a stream that the readers refuse.
//
// Errors. The writers return 0 and ignore the stream's state. The readers return false when the
// stream has failed or has nothing left, when the line is too long, a token is missing or a name
// differs; the stream then stands behind the line, or has failed within one that is too long.
// Threads: no state is shared; any number of streams may be read and written at once.

#ifndef XML_XMLOBJ_H_
#define XML_XMLOBJ_H_

#include <cstdint>
#include <iosfwd>
#include <string>

#include "common/OrbExport.h"

namespace OrbXML_830 {

// The writer's handle for one object. Values stand one level deeper than the object's bracket.
class ORBSEQ_EXPORT XMLObj {
 public:
  XMLObj(const std::string& name, std::int32_t nTabs);  // tabs before the bracket; below 1: none

  const std::string& GetName() const noexcept { return name_; }
  std::int32_t GetNTabs() const noexcept { return nTabs_; }

  int StartObj(std::ostream& os) const;  // the name is written unescaped
  int EndObj(std::ostream& os) const;

  int WriteSubElement(std::ostream& os, const std::string& value) const;  // String
  int WriteSubElement(std::ostream& os, const char* value) const;         // String
  // Double: at most 15 significant digits; the system-missing value is "Missing".
  int WriteSubElement(std::ostream& os, double value) const;
  int WriteSubElement(std::ostream& os, long value) const;          // Long
  int WriteSubElement(std::ostream& os, int value) const;           // Int
  int WriteSubElement(std::ostream& os, unsigned int value) const;  // Int
  int WriteSubElement(std::ostream& os, bool value) const;          // Int, 1 or 0

 private:
  void writeElement(std::ostream& os, const char* element, const std::string& value) const;

  std::string name_;
  std::int32_t nTabs_;
};

ORBSEQ_EXPORT int StartRoot(std::ostream& os, std::string copyright);
ORBSEQ_EXPORT int EndRoot(std::ostream& os);
// Deliberate: other names for the two above.
ORBSEQ_EXPORT int WriteHeader(std::ostream& os, std::string copyright);
ORBSEQ_EXPORT int EndHeader(std::ostream& os);

// The two lines before the root, and the root's start.
ORBSEQ_EXPORT bool ParseStartXML(std::istream& is);
// Skips one empty line, not more. The bracket must end on its line.
ORBSEQ_EXPORT bool ParseStartObj(std::istream& is, const std::string& name);
ORBSEQ_EXPORT bool ParseEndObj(std::istream& is);

// One field. Text that is no number reads as 0, and one outside the type's range as the nearest
// that the type holds (an unsigned nan as 0); a double is left as a stream's failed extraction
// leaves it. None of these is an error, but a truth value other than 0 and 1 is.
// Deliberate: a string's references (&amp;) are not decoded.
ORBSEQ_EXPORT bool ParseValue(std::istream& is, bool& value);
ORBSEQ_EXPORT bool ParseValue(std::istream& is, std::string& value);
ORBSEQ_EXPORT bool ParseValue(std::istream& is, long& value);
ORBSEQ_EXPORT bool ParseValue(std::istream& is, unsigned int& value);
ORBSEQ_EXPORT bool ParseValue(std::istream& is, int& value);
ORBSEQ_EXPORT bool ParseValue(std::istream& is, double& value);

// The same for file streams.
ORBSEQ_EXPORT bool ParseStartXML(std::ifstream& is);
ORBSEQ_EXPORT bool ParseStartObj(std::ifstream& is, const std::string& name);
ORBSEQ_EXPORT bool ParseEndObj(std::ifstream& is);
ORBSEQ_EXPORT bool ParseValue(std::ifstream& is, bool& value);
ORBSEQ_EXPORT bool ParseValue(std::ifstream& is, std::string& value);
ORBSEQ_EXPORT bool ParseValue(std::ifstream& is, long& value);
ORBSEQ_EXPORT bool ParseValue(std::ifstream& is, unsigned int& value);
ORBSEQ_EXPORT bool ParseValue(std::ifstream& is, int& value);
ORBSEQ_EXPORT bool ParseValue(std::ifstream& is, double& value);

}  // namespace OrbXML_830

#endif  // XML_XMLOBJ_H_
