#include "host/transcoding.h"

#include <string>
#include <xercesc/util/PlatformUtils.hpp>

#include "host/documentError.h"
#include "scoring/hostapi/QuErrorFormater.h"
#include "scoring/hostapi/QuException.h"

namespace OrbScore {
namespace {

bool isEncodingName(std::string_view name) {
  constexpr std::size_t kMaxBytes = 64;
  constexpr std::string_view kAllowed =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_.:";
  return !name.empty() && name.size() <= kMaxBytes &&
         name.find_first_not_of(kAllowed) == std::string_view::npos;
}

}  // namespace

std::unique_ptr<xercesc::XMLTranscoder> makeTranscoder(std::string_view encoding) {
  std::unique_ptr<xercesc::XMLTranscoder> transcoder;
  if (isEncodingName(encoding)) {
    const std::u16string name(encoding.begin(), encoding.end());
    xercesc::XMLTransService::Codes reason{};
    try {
      transcoder.reset(xercesc::XMLPlatformUtils::fgTransService->makeNewTranscoderFor(
          name.c_str(), reason, kTranscodingBlock, xercesc::XMLPlatformUtils::fgMemoryManager));
    } catch (...) {
      rethrowParserError("no converter for the encoding");
    }
  }
  if (transcoder == nullptr)
    throw QuException(
        QuErrorFormater::Format("unknown encoding", {}, QuErrorFormater::Quote(encoding)));
  return transcoder;
}

}  // namespace OrbScore
