#include "host/SafeDocument.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <memory>
#include <system_error>
#include <utility>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

#include "common/guards.h"
#include "host/DocumentParser.h"
#include "host/ElementPositions.h"
#include "host/EnvironmentError.h"
#include "host/XercesSession.h"
#include "host/documentError.h"
#include "host/oneLine.h"
#include "host/safeText.h"
#include "host/utf16.h"
#include "scoring/hostapi/QuErrorFormater.h"

namespace OrbScore {
namespace {

constexpr std::u16string_view kLattice = u"SequentialAssociationLattice";
constexpr std::u16string_view kPmml = u"PMML";
constexpr std::u16string_view kSequenceModel = u"SequenceModel";

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

// Deleted, as the parser deletes its own: release() would first visit every node, recursively, to
// tell handlers that nobody has set.
using DocumentPointer = std::unique_ptr<xercesc::DOMDocument>;

std::string nameOf(const std::string& path) {
  constexpr std::size_t kMaxBytes = 4096;
  return oneLine(path, kMaxBytes, /*quoted=*/false);
}

[[noreturn]] void refuseSize(const std::string& name, const std::string& size, std::size_t limit) {
  throw QuException(QuErrorFormater::Format(
      name, "document too large",
      size + " bytes, limit " + std::to_string(limit) + " (raise it with --max-document-bytes)"));
}

[[noreturn]] void failToRead(const std::string& name, std::string_view what, int error) {
  throw EnvironmentError(
      QuErrorFormater::Format(name, what, std::generic_category().message(error)));
}

// Refuses a regular file by its size alone; of a pipe the size is not known.
void checkFileSize(const std::string& path, const std::string& name, std::size_t limit) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored)) return;
  const std::uintmax_t size = std::filesystem::file_size(path, ignored);
  if (!ignored && size > limit && orbseq::guarded("document.file size"))
    refuseSize(name, std::to_string(size), limit);
}

// At most limit + 1 bytes.
std::string readFile(const std::string& path, const std::string& name, std::size_t limit) {
  constexpr std::size_t kBlock = std::size_t{1} << 18;
  const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "rb"));
  if (file == nullptr) failToRead(name, "cannot open the document", errno);

  std::string bytes;
  const std::size_t most = limit == std::numeric_limits<std::size_t>::max() ? limit : limit + 1;
  for (;;) {
    const std::size_t before = bytes.size();
    const std::size_t wanted = std::min(kBlock, most - before);
    if (wanted == 0) break;
    bytes.resize(before + wanted);
    const std::size_t got = std::fread(bytes.data() + before, 1, wanted, file.get());
    const int error = std::ferror(file.get()) != 0 ? errno : 0;
    bytes.resize(before + got);
    if (error != 0) failToRead(name, "cannot read the document", error);
    if (got < wanted) break;
  }
  if (bytes.size() > limit && orbseq::guarded("document.bytes read"))
    refuseSize(name, "more than " + std::to_string(limit), limit);
  return bytes;
}

// The element of that name that comes first in document order below `root`, or null.
DOMElement* firstDescendant(DOMElement* root, std::u16string_view name) {
  DOMElement* element = root->getFirstElementChild();
  while (element != nullptr) {
    if (element->getTagName() == name) return element;
    if (DOMElement* child = element->getFirstElementChild()) {
      element = child;
      continue;
    }
    while (element != root && element->getNextElementSibling() == nullptr)
      element = static_cast<DOMElement*>(element->getParentNode());
    element = element == root ? nullptr : element->getNextElementSibling();
  }
  return nullptr;
}

}  // namespace

struct SafeDocument::State {
  std::string name;
  std::shared_ptr<const XercesSession> session = XercesSession::acquire();  // goes last
  ElementPositions positions;
  DocumentPointer document;
};

SafeDocument::SafeDocument(std::unique_ptr<State> state) noexcept : state_(std::move(state)) {}
SafeDocument::SafeDocument(SafeDocument&&) noexcept = default;
SafeDocument& SafeDocument::operator=(SafeDocument&&) noexcept = default;
SafeDocument::~SafeDocument() = default;

SafeDocument SafeDocument::Load(const std::string& path, const DocumentLimits& limits) {
  const std::string name = nameOf(path);
  checkFileSize(path, name, limits.bytes);
  return Make(readFile(path, name, limits.bytes), name, limits);
}

SafeDocument SafeDocument::Parse(std::string_view bytes, const std::string& name,
                                 const DocumentLimits& limits) {
  const std::string shown = nameOf(name);
  if (bytes.size() > limits.bytes && orbseq::guarded("document.bytes"))
    refuseSize(shown, std::to_string(bytes.size()), limits.bytes);
  return Make(std::string(bytes), shown, limits);
}

SafeDocument SafeDocument::Make(std::string bytes, const std::string& name,
                                const DocumentLimits& limits) {
  auto state = std::make_unique<State>();
  state->name = name;
  try {
    const std::string text = safeText(std::move(bytes), name);
    state->document.reset(DocumentParser(text, name, limits, state->positions).read());
    state->positions.close();
    state->positions.attachTo(*state->document);
  } catch (...) {
    rethrowParserError(name);
  }
  return SafeDocument(std::move(state));
}

const std::string& SafeDocument::GetName() const noexcept { return state_->name; }

DOMElement* SafeDocument::GetRoot() const { return state_->document->getDocumentElement(); }

DOMElement* SafeDocument::GetModelElement() const {
  DOMElement* const root = GetRoot();
  const std::u16string_view rootName = root->getTagName();
  if (rootName == kLattice) return root;
  const bool isPmml = rootName == kPmml;
  if (isPmml)
    if (DOMElement* const model = firstDescendant(root, kSequenceModel)) return model;

  const TextPosition* position = state_->positions.find(root);
  throw documentError(state_->name, position != nullptr ? *position : TextPosition{},
                      "no sequence model",
                      isPmml ? "the PMML document has no SequenceModel element"
                             : "the root element is " + QuErrorFormater::Quote(toUtf8(rootName)) +
                                   ", expected \"SequentialAssociationLattice\" or \"PMML\"");
}

}  // namespace OrbScore
