#include "host/Prologue.h"

#include "common/guards.h"
#include "host/TextCursor.h"
#include "host/documentError.h"

namespace OrbScore {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kDocumentType = "<!DOCTYPE";

bool isBlank(char byte) { return kBlanks.find(byte) != std::string_view::npos; }

// Reads a text token by token; nothing beyond the end.
class Scanner {
 public:
  Scanner(std::string_view text, std::size_t at) : text_(text), at_(at) {}

  std::size_t at() const { return at_; }
  bool atEnd() const { return at_ >= text_.size(); }
  char peek() const { return atEnd() ? '\0' : text_[at_]; }

  bool skip(std::string_view token) {
    if (!text_.substr(at_).starts_with(token)) return false;
    at_ += token.size();
    return true;
  }

  // True when there was at least one.
  bool skipBlanks() {
    const std::size_t before = at_;
    while (!atEnd() && isBlank(text_[at_])) ++at_;
    return at_ > before;
  }

  // Up to the next blank or one of `stops`.
  std::string_view word(std::string_view stops) {
    const std::size_t first = at_;
    while (!atEnd() && !isBlank(text_[at_]) && stops.find(text_[at_]) == std::string_view::npos)
      ++at_;
    return text_.substr(first, at_ - first);
  }

  // A text in single or double quotes; false, at its beginning, when there is none.
  bool literal(std::string_view& content) {
    if (peek() != '"' && peek() != '\'') return false;
    const std::size_t end = text_.find(text_[at_], at_ + 1);
    if (end == std::string_view::npos) return false;
    content = text_.substr(at_ + 1, end - at_ - 1);
    at_ = end + 1;
    return true;
  }

  // Behind the next `token`; false, at the end of the text, when there is none.
  bool skipBehind(std::string_view token) {
    const std::size_t found = text_.find(token, at_);
    at_ = found == std::string_view::npos ? text_.size() : found + token.size();
    return found != std::string_view::npos;
  }

 private:
  std::string_view text_;
  std::size_t at_;
};

// Passes over blanks, comments and instructions.
void skipMiscellaneous(Scanner& scanner) {
  for (;;) {
    scanner.skipBlanks();
    if (scanner.skip("<!--"))
      scanner.skipBehind("-->");
    else if (scanner.skip("<?"))
      scanner.skipBehind("?>");
    else
      return;
  }
}

// SYSTEM "..." or PUBLIC "..." "..."; true when there is neither.
bool skipExternalId(Scanner& scanner) {
  std::string_view ignored;
  if (scanner.skip("PUBLIC")) {
    if (!scanner.skipBlanks() || !scanner.literal(ignored)) return false;
    return scanner.skipBlanks() && scanner.literal(ignored);
  }
  if (scanner.skip("SYSTEM")) return scanner.skipBlanks() && scanner.literal(ignored);
  return true;
}

[[noreturn]] void refuse(std::string_view text, std::size_t at, const std::string& documentName,
                         std::string_view what, std::string_view detail) {
  TextCursor cursor(text);
  cursor.moveTo(at);
  throw documentError(documentName, cursor.position(), what, detail);
}

// Leaves the scanner behind the declaration. Requires that it stands behind "<!DOCTYPE".
void skipDocumentType(Scanner& scanner, std::string_view text, const std::string& documentName) {
  const bool named = scanner.skipBlanks() && !scanner.word("[>\"'").empty();
  bool wellFormed = named;
  if (wellFormed && scanner.skipBlanks()) wellFormed = skipExternalId(scanner);
  scanner.skipBlanks();
  if (wellFormed && scanner.skip(">")) return;
  if (wellFormed && scanner.peek() == '[' && orbseq::guarded("document.internal subset"))
    refuse(text, scanner.at(), documentName, "document type declaration not allowed",
           "it has an internal subset");
  if (!orbseq::guarded("document.malformed type")) return;
  refuse(text, scanner.at(), documentName, "malformed document type declaration",
         "expected <!DOCTYPE name>, <!DOCTYPE name SYSTEM \"...\"> or "
         "<!DOCTYPE name PUBLIC \"...\" \"...\">");
}

}  // namespace

Prologue::Encoding Prologue::declaredEncoding(std::string_view text) noexcept {
  Scanner scanner(text, 0);
  if (!scanner.skip("<?xml") || !isBlank(scanner.peek())) return {};
  while (scanner.skipBlanks()) {
    const std::string_view key = scanner.word("=?>\"'");
    scanner.skipBlanks();
    if (key.empty() || !scanner.skip("=")) return {};
    scanner.skipBlanks();
    const std::size_t offset = scanner.at() + 1;
    std::string_view value;
    if (!scanner.literal(value)) return {};
    if (key == "encoding") return {value, offset};
  }
  return {};
}

void Prologue::blankDocumentType(std::string& text, const std::string& documentName) {
  Scanner scanner(text, 0);
  skipMiscellaneous(scanner);
  const std::size_t first = scanner.at();
  if (!scanner.skip(kDocumentType)) return;
  skipDocumentType(scanner, text, documentName);

  const std::size_t end = scanner.at();
  skipMiscellaneous(scanner);
  if (scanner.skip(kDocumentType) && orbseq::guarded("document.second type"))
    refuse(text, scanner.at() - kDocumentType.size(), documentName,
           "document type declaration not allowed", "it is the second one");

  std::string blanks;  // one for each character, so that columns stay right too
  for (const char byte : std::string_view(text).substr(first, end - first)) {
    if (byte == '\n' || byte == '\r')
      blanks += byte;
    else if ((static_cast<unsigned char>(byte) & 0xC0) != 0x80)
      blanks += ' ';
  }
  text.replace(first, end - first, blanks);
}

}  // namespace OrbScore
