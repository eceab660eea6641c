#include "host/documentError.h"

#include <new>
#include <xercesc/dom/DOMException.hpp>
#include <xercesc/sax/SAXException.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/XMLException.hpp>

#include "host/oneLine.h"
#include "host/utf16.h"
#include "scoring/hostapi/QuErrorFormater.h"

namespace OrbScore {

QuException documentError(const std::string& name, TextPosition at, std::string_view what,
                          std::string_view detail) {
  const std::string place = name + ':' + std::to_string(at.line) + ':' + std::to_string(at.column);
  return QuException(QuErrorFormater::Format(place, what, detail));
}

std::string messageText(const char16_t* message) {
  constexpr std::size_t kMaxUnits = 240;
  if (message == nullptr) return {};
  const std::u16string_view text(message);
  return oneLine(toUtf8(text.substr(0, kMaxUnits + 1)), kMaxUnits, /*quoted=*/false);
}

void rethrowParserError(std::string_view what) {
  const auto fail = [what](const char16_t* message) {
    throw QuException(QuErrorFormater::Format(what, {}, messageText(message)));
  };
  try {
    throw;
  } catch (const xercesc::OutOfMemoryException&) {
    throw std::bad_alloc();
  } catch (const xercesc::SAXException& error) {
    fail(error.getMessage());
  } catch (const xercesc::XMLException& error) {
    fail(error.getMessage());
  } catch (const xercesc::DOMException& error) {
    fail(error.getMessage());
  }
  throw QuException(std::string(what));  // not reached: every handler above throws
}

}  // namespace OrbScore
