// Constants of the XML writers, and helpers on texts.
//
// Never instantiated. Threads: every operation may be called by any thread.

#ifndef XML_XMLUTIL_H_
#define XML_XMLUTIL_H_

#include <string>

#include "common/OrbExport.h"

namespace OrbXML_830 {

class ORBSEQ_EXPORT XMLUtil {
 public:
  static const int TAB_LENGTH = 8;  // no writer uses it
  static const char* const ROWSEP;
  static const char* const FIRST_LINE;  // the XML declaration
  static const char* const ITEMINDENT;
  static const char* const QUOTE;
  static const char* const EQUAL;
  static const char* const BEGIN_ELEMENT;
  static const char* const BEGIN_PREPROCESSOR;
  static const char* const END_ELEMENT;
  static const char* const BEGIN_END_ELEMENT;
  static const char* const SPACE;
  static const char* const AMPERSAND;
  static const char* const LESS_THAN;
  static const char* const GREATER_THAN;
  static const char* const XML_AMPERSAND;
  static const char* const XML_LESS_THAN;
  static const char* const XML_GREATER_THAN;
  static const char* const XML_QUOTE;
  static const char* const XML_CHARREF_TAB;
  static const char* const XML_CHARREF_NL;
  static const char* const XML_CHARREF_CR;
  static const char* const XML_CHARREF_SP;
  static const char* const XML_SP_CHARREF_SP;

  static std::string GetTabs(int n);  // n tabs; none when n is below 1
  static std::string toString(int n);

  // An attribute's value fit to stand in double quotes: & < > " and the white space that a parser
  // would normalise become references; of spaces, the second of each pair and one at either end.
  static std::string Escape(const std::string& s);

  // Replaces the first occurrence; its index, or -1.
  static int ReplaceString(std::string& s, const char* find, const std::string& replacement);

  // Replaces every occurrence from left to right; inserted text is not searched again. -1 when
  // nothing was replaced, else the index of the last character of the last replacement.
  // An empty `find` replaces nothing.
  static int ReplaceAll(std::string& s, const char* find, const std::string& replacement);

 private:
  // Replaces the first occurrence at or after `pos`, and moves `pos` to it and returns it.
  // Deliberate: without one -1 comes back and `pos` is one less than it was, unless it lay beyond
  // the text.
  static int ReplaceAtPos(std::string& s, const char* find, const std::string& replacement,
                          int& pos);
};

}  // namespace OrbXML_830

#endif  // XML_XMLUTIL_H_
