#include "xml/XMLUtil.h"

#include <cstddef>
#include <cstring>

namespace OrbXML_830 {

const int XMLUtil::TAB_LENGTH;
const char* const XMLUtil::ROWSEP = "\n";
const char* const XMLUtil::FIRST_LINE = "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>";
const char* const XMLUtil::ITEMINDENT = "\t";
const char* const XMLUtil::QUOTE = "\"";
const char* const XMLUtil::EQUAL = "=";
const char* const XMLUtil::BEGIN_ELEMENT = "<";
const char* const XMLUtil::BEGIN_PREPROCESSOR = "!";
const char* const XMLUtil::END_ELEMENT = ">";
const char* const XMLUtil::BEGIN_END_ELEMENT = "/";
const char* const XMLUtil::SPACE = " ";
const char* const XMLUtil::AMPERSAND = "&";
const char* const XMLUtil::LESS_THAN = "<";
const char* const XMLUtil::GREATER_THAN = ">";
const char* const XMLUtil::XML_AMPERSAND = "&amp;";
const char* const XMLUtil::XML_LESS_THAN = "&lt;";
const char* const XMLUtil::XML_GREATER_THAN = "&gt;";
const char* const XMLUtil::XML_QUOTE = "&quot;";
const char* const XMLUtil::XML_CHARREF_TAB = "&#9;";
const char* const XMLUtil::XML_CHARREF_NL = "&#10;";
const char* const XMLUtil::XML_CHARREF_CR = "&#13;";
const char* const XMLUtil::XML_CHARREF_SP = "&#32;";
const char* const XMLUtil::XML_SP_CHARREF_SP = " &#32;";

std::string XMLUtil::GetTabs(int n) {
  return std::string(n > 0 ? static_cast<std::size_t>(n) : 0, *ITEMINDENT);
}

std::string XMLUtil::toString(int n) { return std::to_string(n); }

// One pass that gives what the replacements in their promised order give: the ampersand first, so
// that inserted references are not escaped again, and pairs of spaces from left to right.
std::string XMLUtil::Escape(const std::string& s) {
  std::string escaped;
  escaped.reserve(s.size() + s.size() / 8);
  for (std::size_t i = 0; i < s.size(); ++i) {
    switch (s[i]) {
      case '&':
        escaped += XML_AMPERSAND;
        break;
      case '<':
        escaped += XML_LESS_THAN;
        break;
      case '>':
        escaped += XML_GREATER_THAN;
        break;
      case '"':
        escaped += XML_QUOTE;
        break;
      case '\t':
        escaped += XML_CHARREF_TAB;
        break;
      case '\n':
        escaped += XML_CHARREF_NL;
        break;
      case '\r':
        escaped += XML_CHARREF_CR;
        break;
      case ' ':
        if (i + 1 < s.size() && s[i + 1] == ' ') {
          escaped += XML_SP_CHARREF_SP;
          ++i;
        } else {
          escaped += ' ';
        }
        break;
      default:
        escaped += s[i];
    }
  }
  if (!escaped.empty() && escaped.front() == ' ') escaped.replace(0, 1, XML_CHARREF_SP);
  if (!escaped.empty() && escaped.back() == ' ')
    escaped.replace(escaped.size() - 1, 1, XML_CHARREF_SP);
  return escaped;
}

int XMLUtil::ReplaceString(std::string& s, const char* find, const std::string& replacement) {
  int pos = 0;
  return ReplaceAtPos(s, find, replacement, pos);
}

int XMLUtil::ReplaceAll(std::string& s, const char* find, const std::string& replacement) {
  int pos = 0;
  if (*find == '\0') return -1;  // it would be found everywhere, for ever
  while (ReplaceAtPos(s, find, replacement, pos) != -1) pos += static_cast<int>(replacement.size());
  return pos;
}

int XMLUtil::ReplaceAtPos(std::string& s, const char* find, const std::string& replacement,
                          int& pos) {
  if (pos < 0 || static_cast<std::size_t>(pos) > s.size()) return -1;
  const std::size_t found = s.find(find, static_cast<std::size_t>(pos));
  if (found == std::string::npos) {
    --pos;  // Deliberate: the failed search's -1 is added before it is tested
    return -1;
  }
  pos = static_cast<int>(found);
  s.replace(found, std::strlen(find), replacement);
  return pos;
}

}  // namespace OrbXML_830
