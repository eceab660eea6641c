#include "host/Decoder.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <xercesc/util/XMLException.hpp>

#include "host/documentError.h"
#include "host/utf16.h"

namespace OrbScore {

namespace {

// What converters put in the place of a byte that is not of the encoding: some the control
// character SUB, which no document may hold.
bool isReplacement(char16_t unit) noexcept { return unit == 0xFFFD || unit == 0x1A; }

}  // namespace

Decoder::Decoder(std::string_view encoding)
    : session_(XercesSession::acquire()), transcoder_(makeTranscoder(encoding)) {}

Decoder::Block Decoder::decodeBlock(std::string_view bytes, std::u16string& units,
                                    std::size_t& eaten) {
  std::array<unsigned char, kTranscodingBlock> sizes;
  units.resize(kTranscodingBlock);
  XMLSize_t taken = 0;
  try {
    const XMLSize_t made = transcoder_->transcodeFrom(
        reinterpret_cast<const XMLByte*>(bytes.data()), std::min(bytes.size(), kTranscodingBlock),
        units.data(), kTranscodingBlock, taken, sizes.data());
    units.resize(made);
    const auto wrong = std::ranges::find_if(units, isReplacement);
    if (wrong == units.end()) {
      eaten = taken;
      return taken > 0 ? Block::kGood : Block::kStopped;
    }
    eaten = std::accumulate(sizes.begin(), sizes.begin() + (wrong - units.begin()), std::size_t{0});
    units.erase(wrong, units.end());
    return Block::kStopped;
  } catch (const xercesc::XMLException&) {
    units.clear();
    eaten = 0;
    return Block::kRefused;
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
  return decodeBlock(probe, units, eaten) == Block::kGood && eaten == probe.size() &&
         std::ranges::equal(units, probe, [](char16_t unit, char byte) {
           return unit == static_cast<unsigned char>(byte);
         });
}

bool Decoder::endsWhole() {
  // A converter keeps the beginning of a character for itself until it sees what follows.
  std::u16string units;
  std::size_t eaten = 0;
  return decodeBlock("\n", units, eaten) == Block::kGood && units == u"\n";
}

std::size_t Decoder::append(std::string_view bytes, std::string& out) {
  std::u16string units;
  std::u16string pending;  // a first half whose second half comes with the next block
  std::size_t at = 0;
  std::size_t block = kTranscodingBlock;
  while (at < bytes.size()) {
    std::size_t eaten = 0;
    const Block outcome = decodeBlock(bytes.substr(at, block), units, eaten);
    pending += units;
    const bool halved = !pending.empty() && isHighSurrogate(pending.back());
    const std::size_t whole = pending.size() - (halved ? 1 : 0);
    out += toUtf8(std::u16string_view(pending).substr(0, whole));
    pending.erase(0, whole);
    at += eaten;
    if (outcome == Block::kStopped || (outcome == Block::kRefused && block == 1)) return at;
    if (outcome == Block::kRefused) block = 1;  // byte by byte up to the one that is wrong
  }
  out += toUtf8(pending);
  return endsWhole() ? at : at - 1;
}

}  // namespace OrbScore
