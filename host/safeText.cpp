#include "host/safeText.h"

#include <array>
#include <string_view>
#include <utility>

#include "common/guards.h"
#include "common/utf8.h"
#include "host/Decoder.h"
#include "host/Prologue.h"
#include "host/TextCursor.h"
#include "host/documentError.h"
#include "scoring/hostapi/QuErrorFormater.h"

namespace OrbScore {
namespace {

using namespace std::string_view_literals;

[[noreturn]] void refuse(std::string_view text, std::size_t at, const std::string& name,
                         std::string_view what, std::string_view detail = {}) {
  TextCursor cursor(text);
  cursor.moveTo(at);
  throw documentError(name, cursor.position(), what, detail);
}

// Encodings in which even ASCII is something else are known by how a document begins in them.
void refuseForeignBeginning(std::string_view bytes, const std::string& name) {
  struct Beginning {
    std::string_view bytes;
    std::string_view encoding;
  };
  static constexpr std::array kBeginnings = {Beginning{"\xFF\xFE\0\0"sv, "UTF-32"},
                                             Beginning{"\0\0\xFE\xFF"sv, "UTF-32"},
                                             Beginning{"<\0\0\0"sv, "UTF-32"},
                                             Beginning{"\0\0\0<"sv, "UTF-32"},
                                             Beginning{"\xFF\xFE"sv, "UTF-16"},
                                             Beginning{"\xFE\xFF"sv, "UTF-16"},
                                             Beginning{"<\0"sv, "UTF-16"},
                                             Beginning{"\0<"sv, "UTF-16"},
                                             Beginning{"\x4C\x6F\xA7\x94"sv, "EBCDIC"}};
  for (const Beginning& beginning : kBeginnings)
    if (bytes.starts_with(beginning.bytes) && orbseq::guarded("document.foreign encoding"))
      throw documentError(
          name, {}, "encoding not supported",
          std::string(beginning.encoding) + " (allowed: UTF-8 and encodings that contain ASCII)");
}

// "UTF-8", "utf8" and the like.
bool isUtf8(std::string_view encoding) {
  std::string plain;
  for (const char byte : encoding) {
    if (byte == '-' || byte == '_') continue;
    plain += byte >= 'a' && byte <= 'z' ? static_cast<char>(byte - 'a' + 'A') : byte;
  }
  return plain == "UTF8";
}

// The text in UTF-8. Requires a declared encoding that is not UTF-8.
std::string decoded(std::string_view bytes, const Prologue::Encoding& declared,
                    const std::string& name) {
  const std::string quoted = QuErrorFormater::Quote(declared.name);
  bool containsAscii = false;
  try {
    containsAscii = Decoder(declared.name).containsAscii();
  } catch (const QuException&) {
    refuse(bytes, declared.offset, name, "unknown encoding", quoted);
  }
  if (!containsAscii && orbseq::guarded("document.no ASCII"))
    refuse(bytes, declared.offset, name, "encoding not supported",
           quoted + " (allowed: UTF-8 and encodings that contain ASCII)");

  std::string text;
  text.reserve(bytes.size());
  const std::size_t end = Decoder(declared.name).append(bytes, text);
  if (end < bytes.size() && orbseq::guarded("document.bytes of encoding"))
    refuse(text, text.size(), name, "invalid byte for the encoding", quoted);
  return text;
}

}  // namespace

std::string safeText(std::string bytes, const std::string& name) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (bytes.empty() && orbseq::guarded("document.empty"))
    throw documentError(name, {}, "the document is empty");
  refuseForeignBeginning(bytes, name);

  const bool marked = bytes.starts_with(kByteOrderMark);
  if (marked) bytes.erase(0, kByteOrderMark.size());
  if (const std::size_t nul = bytes.find('\0');
      nul != std::string::npos && orbseq::guarded("document.NUL"))
    refuse(bytes, nul, name, "NUL byte");

  const Prologue::Encoding declared = Prologue::declaredEncoding(bytes);
  if (declared.name.empty() || isUtf8(declared.name)) {
    if (const std::size_t wrong = orbseq::firstInvalidUtf8(bytes);
        wrong != std::string::npos && orbseq::guarded("document.UTF-8"))
      refuse(bytes, wrong, name, "invalid UTF-8");
  } else if (marked && orbseq::guarded("document.contradicting encodings")) {
    refuse(bytes, declared.offset, name, "contradicting encodings",
           "the byte order mark says UTF-8, the XML declaration " +
               QuErrorFormater::Quote(declared.name));
  } else {
    bytes = decoded(bytes, declared, name);
  }
  Prologue::blankDocumentType(bytes, name);
  return bytes;
}

}  // namespace OrbScore
