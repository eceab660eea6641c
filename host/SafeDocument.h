// An XML document from a stranger, read into a tree without side effects.
//
// What is read. UTF-8, with or without byte order mark, and every encoding that the document
// declares, the parser knows and that writes ASCII as ASCII. A document type declaration without
// internal subset is accepted and ignored: no DTD is ever opened, and no entity beside the five of
// XML is known. White space between elements is not kept in the tree.
//
// What is refused, with file, line and column: UTF-16, UTF-32 and unknown encodings, NUL bytes,
// invalid UTF-8, an internal subset, an undeclared entity, everything that is not well-formed XML,
// and what goes beyond the limits. Nothing but the file itself is opened, and nothing is executed
// or fetched.
//
// Errors. "FILE:LINE:COLUMN: what: detail", or "FILE: what: detail" where there is no position, as
// QuException for content and as EnvironmentError for a file that cannot be opened or read. Lines
// and columns count from 1, columns in characters. std::bad_alloc may pass through.
//
// Ownership. The document owns the tree: elements and texts of it are valid as long as the
// document, also when it has been moved. A moved-from document may only be destroyed or assigned.
//
// Threads. Documents are independent of each other: any number of threads may load at once. One
// document is for one thread at a time. The parser's process-wide state is started with the first
// document and stays until the process ends.

#ifndef HOST_SAFEDOCUMENT_H_
#define HOST_SAFEDOCUMENT_H_

#include <memory>
#include <string>
#include <string_view>

#include "host/DocumentLimits.h"
#include "scoring/hostapi/DomTypes.h"
#include "scoring/hostapi/HostExport.h"

namespace OrbScore {

class ORBSCORE_EXPORT SafeDocument {
 public:
  // Reads the file, or pipe, at `path`. No path is special. A regular file that is too large is
  // refused before it is read; of anything else, at most limits.bytes + 1 bytes are read.
  static SafeDocument Load(const std::string& path, const DocumentLimits& limits = {});

  // Reads `bytes`, which need not outlive the call. Errors call the document `name`.
  static SafeDocument Parse(std::string_view bytes, const std::string& name,
                            const DocumentLimits& limits = {});

  SafeDocument(SafeDocument&&) noexcept;
  SafeDocument& operator=(SafeDocument&&) noexcept;
  SafeDocument(const SafeDocument&) = delete;
  SafeDocument& operator=(const SafeDocument&) = delete;
  ~SafeDocument();

  // The path or name that errors tell, control characters escaped.
  const std::string& GetName() const noexcept;

  // Never null.
  DOMElement* GetRoot() const;

  // The element that a translator reads: the root where it is a SequentialAssociationLattice, the
  // first SequenceModel in document order where the root is PMML. Throws QuException, telling what
  // was found, for any other document. Never null.
  DOMElement* GetModelElement() const;

 private:
  struct State;
  explicit SafeDocument(std::unique_ptr<State> state) noexcept;

  static SafeDocument Make(std::string bytes, const std::string& name,
                           const DocumentLimits& limits);

  std::unique_ptr<State> state_;
};

}  // namespace OrbScore

#endif  // HOST_SAFEDOCUMENT_H_
