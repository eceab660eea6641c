#include "scoring/hostapi/QuillonTranscoder.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "host/XercesSession.h"
#include "host/documentError.h"
#include "host/transcoding.h"
#include "host/utf16.h"

namespace OrbScore {
namespace {

// The text with each surrogate that lacks its other half replaced, since converters stop there.
std::u16string wellFormed(std::u16string_view text) {
  constexpr char16_t kReplacement = 0xFFFD;
  std::u16string out(text);
  for (std::size_t i = 0; i < out.size(); ++i) {
    const bool pair = isHighSurrogate(out[i]) && i + 1 < out.size() && isLowSurrogate(out[i + 1]);
    if (pair)
      ++i;
    else if (isHighSurrogate(out[i]) || isLowSurrogate(out[i]))
      out[i] = kReplacement;
  }
  return out;
}

// How many units go into the next block: never the first half of a character alone.
std::size_t blockOf(std::u16string_view text) {
  if (text.size() <= kTranscodingBlock) return text.size();
  return isHighSurrogate(text[kTranscodingBlock - 1]) ? kTranscodingBlock - 1 : kTranscodingBlock;
}

}  // namespace

struct QuillonTranscoder::State {
  std::string encoding;
  std::shared_ptr<const XercesSession> session = XercesSession::acquire();  // goes last
  std::unique_ptr<xercesc::XMLTranscoder> transcoder = makeTranscoder(encoding);
};

QuillonTranscoder::QuillonTranscoder(const std::string& encoding)
    : state_(new State{.encoding = encoding.empty() ? "UTF-8" : encoding}) {}

QuillonTranscoder::~QuillonTranscoder() = default;

const std::string& QuillonTranscoder::GetEncoding() const noexcept { return state_->encoding; }

std::string QuillonTranscoder::transcodeTo(const DomChar* text) const {
  if (text == nullptr) return {};
  const std::u16string units = wellFormed(text);
  std::u16string_view rest = units;
  std::array<XMLByte, 2 * kTranscodingBlock> bytes;
  std::string out;
  try {
    while (!rest.empty()) {
      XMLSize_t eaten = 0;
      const XMLSize_t made =
          state_->transcoder->transcodeTo(rest.data(), blockOf(rest), bytes.data(), bytes.size(),
                                          eaten, xercesc::XMLTranscoder::UnRep_RepChar);
      if (eaten == 0 && made == 0) throw QuException("the text does not convert");
      out.append(reinterpret_cast<const char*>(bytes.data()), made);
      rest.remove_prefix(eaten);
    }
  } catch (...) {
    rethrowParserError("the text does not convert");
  }
  return out;
}

}  // namespace OrbScore
