// The parser's process-wide state, started once and stopped once.
//
// Whoever uses the parser holds a session for as long. The first one starts the parser; it is
// stopped when the process (or the library) goes and the last holder with it.
//
// Threads: any thread may acquire or drop one at any time. A program that starts the same parser
// on its own does so before, or in the same thread as, its first use of this library: the parser
// itself counts starts, but not thread-safely.

#ifndef HOST_XERCESSESSION_H_
#define HOST_XERCESSESSION_H_

#include <memory>

namespace OrbScore {

class XercesSession {
 public:
  // Never null. Throws QuException when the parser does not start.
  static std::shared_ptr<const XercesSession> acquire();

  XercesSession(const XercesSession&) = delete;
  XercesSession& operator=(const XercesSession&) = delete;
  ~XercesSession();

 private:
  XercesSession();
};

}  // namespace OrbScore

#endif  // HOST_XERCESSESSION_H_
