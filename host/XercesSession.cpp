#include "host/XercesSession.h"

#include <xercesc/util/PlatformUtils.hpp>

#include "host/documentError.h"

namespace OrbScore {

XercesSession::XercesSession() {
  try {
    xercesc::XMLPlatformUtils::Initialize();
  } catch (...) {
    rethrowParserError("the XML parser does not start");
  }
}

XercesSession::~XercesSession() { xercesc::XMLPlatformUtils::Terminate(); }

std::shared_ptr<const XercesSession> XercesSession::acquire() {
  // One holder is this variable, so that the parser is not started and stopped by every document.
  static const std::shared_ptr<const XercesSession> session(new XercesSession);
  return session;
}

}  // namespace OrbScore
