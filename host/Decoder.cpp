#include "host/Decoder.h"

#include <algorithm>
#include <array>
#include <xercesc/util/XMLException.hpp>

#include "host/documentError.h"
#include "host/utf16.h"

namespace OrbScore {

Decoder::Decoder(std::string_view encoding)
    : session_(XercesSession::acquire()), transcoder_(makeTranscoder(encoding)) {}

bool Decoder::decodeBlock(std::string_view bytes, std::u16string& units, std::size_t& eaten) {
  std::array<unsigned char, kTranscodingBlock> sizes;
  units.resize(kTranscodingBlock);
  XMLSize_t taken = 0;
  try {
    const XMLSize_t made = transcoder_->transcodeFrom(
        reinterpret_cast<const XMLByte*>(bytes.data()), std::min(bytes.size(), kTranscodingBlock),
        units.data(), kTranscodingBlock, taken, sizes.data());
    units.resize(made);
    eaten = taken;
    return true;
  } catch (const xercesc::XMLException&) {
    return false;
  } catch (...) {
    rethrowParserError("the conversion fails");
  }
}

bool Decoder::containsAscii() {
  // Escape and the two shifts stand for encodings that switch; "~" and "+" lead into others.
  std::string probe = "\t\n\r\x0E\x0F\x1B";
  for (char byte = ' '; byte <= '~'; ++byte) probe += byte;
  std::u16string units;
  std::size_t eaten = 0;
  return decodeBlock(probe, units, eaten) && eaten == probe.size() &&
         std::ranges::equal(units, probe, [](char16_t unit, char byte) {
           return unit == static_cast<unsigned char>(byte);
         });
}

std::size_t Decoder::append(std::string_view bytes, std::string& out) {
  std::u16string units;
  std::u16string pending;  // a first half whose second half comes with the next block
  std::size_t at = 0;
  std::size_t block = kTranscodingBlock;
  while (at < bytes.size()) {
    std::size_t eaten = 0;
    const bool decoded = decodeBlock(bytes.substr(at, block), units, eaten);
    if (!decoded && block == 1) break;
    if (!decoded) {
      block = 1;  // byte by byte up to the one that is wrong
      continue;
    }
    if (eaten == 0 && units.empty()) break;  // a character that the text's end cuts
    pending += units;
    const bool halved = !pending.empty() && isHighSurrogate(pending.back());
    const std::size_t whole = pending.size() - (halved ? 1 : 0);
    out += toUtf8(std::u16string_view(pending).substr(0, whole));
    pending.erase(0, whole);
    at += eaten;
  }
  out += toUtf8(pending);
  return at;
}

}  // namespace OrbScore
