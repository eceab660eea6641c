// The bytes are a lattice document: read safely, translated, asked.
//
// A refusal is a QuException, in one line that begins with the document's name or tells that the
// lattice was refused.

#include <memory>
#include <ostream>
#include <string>

#include "fuzz/Choice.h"
#include "fuzz/check.h"
#include "fuzz/modelQuestions.h"
#include "host/SafeDocument.h"
#include "scoring/GiveMyTranslator.h"
#include "scoring/hostapi/QuException.h"
#include "scoring/hostapi/ScoreTranslator.h"

namespace {

using namespace orbseq::fuzz;
using OrbScore::QuException;
using OrbScore::SafeDocument;

// Null for a lattice that is refused.
std::unique_ptr<OrbScore::ScoreModel> modelOf(OrbScore::DOMElement* element) {
  const std::unique_ptr<OrbScore::ScoreTranslator> translator(GiveMyTranslator());
  try {
    return std::unique_ptr<OrbScore::ScoreModel>(translator->ParseFromTree(element, "UTF-8"));
  } catch (const QuException& refusal) {
    requireErrorText(refusal.what(), "");
    return nullptr;
  }
}

void read(std::string_view bytes, Choice choice) {
  constexpr const char* kName = "d.xml";
  const SafeDocument document = SafeDocument::Parse(bytes, kName);
  const auto model = modelOf(document.GetModelElement());
  if (model == nullptr) return;
  askModel(*model, choice);
  std::ostream nowhere(nullptr);
  model->Display(nowhere);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    read(textOf(data, size), Choice(data, size));
  } catch (const QuException& refusal) {
    requireErrorText(refusal.what(), "d.xml:");
  }
  return 0;
}
