// How a tree is being written: the flags of the layout, and where the writer stands.
//
// Plain value, passed by reference through one serialisation and changed by it. Use a fresh one
// for each document.

#ifndef XML_EXPORTFORMAT_H_
#define XML_EXPORTFORMAT_H_

#include <cstdint>

#include "common/OrbExport.h"

namespace OrbXML_830 {

class ORBSEQ_EXPORT ExportFormat {
 public:
  ExportFormat() = default;  // new paragraph, no indentation, formatted, level 0

  void SetIsNewParagraph(bool newParagraph) noexcept { newParagraph_ = newParagraph; }
  void SetIndentation(bool indentation) noexcept { indentation_ = indentation; }
  void SetFormat(bool format) noexcept { format_ = format; }

  // Both are false while the format flag is off.
  bool IsNewParagraph() const noexcept { return format_ && newParagraph_; }
  bool HasIndentation() const noexcept { return format_ && indentation_; }

  std::int32_t GetLevel() const noexcept { return level_; }  // nesting depth
  void EnterLevel() noexcept { ++level_; }
  void LeaveLevel() noexcept { --level_; }

 private:
  bool newParagraph_ = true;  // the next element begins on a new line
  bool indentation_ = false;
  bool format_ = true;  // off: neither line feeds nor tabs
  std::int32_t level_ = 0;
};

}  // namespace OrbXML_830

#endif  // XML_EXPORTFORMAT_H_
