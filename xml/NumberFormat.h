// Numbers as text: for machines in the classic locale, for people in the process's own.
//
// Threads: every function may be called by any thread; those that follow the C locale follow the
// one that is set at the call.

#ifndef XML_NUMBERFORMAT_H_
#define XML_NUMBERFORMAT_H_

#include <string>

#include "common/OrbExport.h"

namespace OrbXML_830 {

ORBSEQ_EXPORT std::string GetDefaultNumericFormat();  // "%.15g"
ORBSEQ_EXPORT std::string GetDecimalCharacter();      // of the current C locale
// ";". Deliberate: a constant, whatever the locale.
ORBSEQ_EXPORT std::string GetListSeparator();

// With useFormat the number printed with the printf format (null: the default one) in the current C
// locale; text beyond 111 characters is cut. Otherwise ReplaceSep(value, format).
// Deliberate: without useFormat the format is ignored.
ORBSEQ_EXPORT std::string Format(double value, bool useFormat, const char* format);
// The number as Format(value, true, nullptr) prints it.
ORBSEQ_EXPORT std::string Format(long value);

// 16 digits after the decimal point, "." as decimal point.
ORBSEQ_EXPORT std::string ReplaceSep(double value);
// At most 15 significant digits, "." as decimal point; the form used in documents. The format is
// not used.
ORBSEQ_EXPORT std::string ReplaceSep(double value, const char* format);

}  // namespace OrbXML_830

#endif  // XML_NUMBERFORMAT_H_
