// The process's narrow code page: what the bytes of its narrow texts mean.

#ifndef COMMON_PLATFORM_CODEPAGE_H_
#define COMMON_PLATFORM_CODEPAGE_H_

#include <string>
#include <string_view>

namespace orbseq::platform {

// The text in UTF-16. What cannot be decoded becomes U+FFFD, byte by byte. The code page is the
// codeset of the C locale that is set at the call: plain ASCII until a program sets another.
// Threads: as long as no thread sets the locale.
std::u16string narrowToUtf16(std::string_view text);

}  // namespace orbseq::platform

#endif  // COMMON_PLATFORM_CODEPAGE_H_
