#include "io/ModelFile.h"

#include <charconv>
#include <cstring>
#include <filesystem>
#include <limits>
#include <ostream>
#include <span>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <unordered_set>
#include <utility>
#include <vector>

#include "common/guards.h"
#include "common/messages.h"
#include "document/LatticeReader.h"
#include "engine/compile.h"
#include "engine/compiledForm.h"
#include "host/SafeDocument.h"
#include "io/AtomicFile.h"
#include "io/IoError.h"
#include "io/SinkStream.h"
#include "io/SourceStream.h"
#include "io/modelLabels.h"
#include "io/statusError.h"
#include "lattice/LatticeDocument.h"
#include "scoring/hostapi/BaseTranslator.h"
#include "scoring/hostapi/QuErrorFormater.h"
#include "scoring/hostapi/QuException.h"
#include "scoring/hostapi/QuillonTranscoder.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/SeqExceptions.h"
#include "sequence/SequenceCounter.h"
#include "sequence/errorText.h"
#include "xml/XMLDocType.h"
#include "xml/XMLObj.h"

namespace orbseq {

namespace {

using OrbScore::BaseTranslator;
using OrbScore::SafeDocument;
using SEQUENCE_NAMESPACE_800::HashtableSQPair;
using SEQUENCE_NAMESPACE_800::ISQCPair;
using SEQUENCE_NAMESPACE_800::SeqExceptions;

const char* const kObjectXmlRoot = "OrbXMLRoot";

// Object-XML says what it is in its document type.
ModelForm formOfHead(std::string_view head) {
  if (head.starts_with("SD")) return ModelForm::kBinary;
  if (engine::beginsCompiledForm(std::as_bytes(std::span(head)))) return ModelForm::kCompiled;
  const std::size_t type = head.find("<!DOCTYPE");
  if (type != std::string_view::npos && head.substr(type, 64).find(kObjectXmlRoot) < 32)
    return ModelForm::kObjectXml;
  return ModelForm::kDocument;  // of whatever kind
}

// --- Documents -----------------------------------------------------------------------------------

// The minimum support that the statistics tell, or 0.
double minimumSupportOf(const OrbScore::DOMElement* lattice) {
  const OrbScore::DOMElement* const statistics =
      BaseTranslator::GetElt(BaseTranslator::GetElementsByTagName(lattice, u"SeqInputStats"), 0);
  const OrbScore::DomChar* const text = BaseTranslator::GetAttribute(statistics, u"minimumSupport");
  if (text == nullptr) return 0.0;
  const std::string digits = OrbScore::QuillonTranscoder("UTF-8").transcodeTo(text);
  double value = 0.0;
  const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return parsed.ec == std::errc() && value >= 0.0 && value <= 1.0 ? value : 0.0;
}

// All levels up to the highest that holds a sequence, and the empty one above it where there is
// one; level 0 in any case, since a stored lattice has one.
std::unique_ptr<Lattice> latticeOf(LatticeTables& tables) {
  auto& levels = tables.levels;
  if (levels.empty()) levels.push_back(std::make_unique<HashtableSQPair>(2));
  while (levels.size() > 1 && levels.back()->getSize() == 0 &&
         levels[levels.size() - 2]->getSize() == 0)
    levels.pop_back();
  auto array = std::make_unique<HashtableSQPair*[]>(levels.size());
  for (std::size_t i = 0; i < levels.size(); ++i) array[i] = levels[i].get();
  auto lattice = std::make_unique<Lattice>(array.get(), static_cast<int>(levels.size()));
  static_cast<void>(array.release());
  for (auto& table : levels) static_cast<void>(table.release());
  return lattice;
}

Model modelOf(const SafeDocument& document) {
  try {
    const OrbScore::DOMElement* const element = latticeIn(document.GetModelElement());
    LatticeTables tables = readLattice(element, OrbScore::QuillonTranscoder("UTF-8"));
    Model model;
    model.labels = labelsOf(tables.labels.get());
    model.lattice = latticeOf(tables);
    model.lattice->setReductionThreshold(minimumSupportOf(element));
    return model;
  } catch (const OrbScore::QuException& error) {
    const std::string& name = document.GetName();
    const std::string text = error.what();
    if (text.starts_with(name + ':')) throw;
    throw OrbScore::QuException(OrbScore::QuErrorFormater::Format(name, {}, text));
  }
}

SafeDocument documentIn(const std::string& path, SourceStream& source,
                        const OrbScore::DocumentLimits& limits) {
  std::error_code ignored;
  if (path != "-" && std::filesystem::is_regular_file(path, ignored))
    return SafeDocument::Load(path, limits);
  std::string bytes;
  std::vector<char> block(std::size_t{1} << 16U);
  while (bytes.size() <= limits.bytes) {
    source.read(block.data(), static_cast<std::streamsize>(block.size()));
    if (source.gcount() == 0) break;
    bytes.append(block.data(), static_cast<std::size_t>(source.gcount()));
  }
  source.throwIfUnreadable();
  return SafeDocument::Parse(bytes, source.name(), limits);
}

// --- What is read
// ----------------------------------------------------------------------------------

// Calls each(level, entry) for everything stored.
template <class Each>
void forEachEntry(const Lattice& lattice, Each each) {
  for (std::int32_t level = 0; level < lattice.getNumLevels(); ++level)
    if (const HashtableSQPair* const table = lattice.getTable(level))
      for (const ISQCPair& entry : *table) each(level, entry);
}

// A document would not take a negative count, and no answer makes sense of one.
void checkCounts(const std::string& name, const Lattice& lattice) {
  forEachEntry(lattice, [&name](std::int32_t level, const ISQCPair& entry) {
    if (entry.value != nullptr && entry.value->getCount() < 0 && guarded("model.count"))
      throw InputError(name, 0,
                       "level " + std::to_string(level) + ": a count of " +
                           std::to_string(entry.value->getCount()) + " is outside 0..2147483647");
  });
}

// Labels of items that no sequence has would only be counted.
void dropForeignLabels(Model& model) {
  std::unordered_set<std::int32_t> items;
  forEachEntry(*model.lattice, [&items](std::int32_t, const ISQCPair& entry) {
    items.insert(entry.key->items().begin(), entry.key->items().end());
  });
  std::erase_if(model.labels, [&items](const auto& label) { return !items.contains(label.first); });
}

// --- Streams -------------------------------------------------------------------------------------

std::unique_ptr<Lattice> readBinary(SourceStream& source) {
  auto lattice = std::make_unique<Lattice>();
  try {
    lattice->readObject(source);
  } catch (SeqExceptions::IOException* error) {
    const std::unique_ptr<SeqExceptions::IOException> owned(error);
    source.throwIfUnreadable();
    throw InputError(source.name(), 0, owned->what());
  }
  if (source.peek() != std::char_traits<char>::eof() && guarded("model.bytes behind"))
    throw InputError(source.name(), 0,
                     offsetText(source.offset()) + ": bytes after the end of the lattice");
  return lattice;
}

[[noreturn]] void refuseObjectXml(const SourceStream& source, const std::string& detail) {
  source.throwIfUnreadable();
  throw InputError(source.name(), source.line(), detail);
}

std::unique_ptr<Lattice> readObjectXml(SourceStream& source) {
  auto lattice = std::make_unique<Lattice>();
  std::uint64_t lines = 0;
  try {
    if (!OrbXML_830::ParseStartXML(source) && guarded("model.no object-XML"))
      refuseObjectXml(source, "no stream of objects in XML begins here");
    lines = lattice->readObjectXML(source);
  } catch (SeqExceptions::IOException* error) {
    const std::unique_ptr<SeqExceptions::IOException> owned(error);
    refuseObjectXml(source, owned->what());
  }
  if (lines == 0 && guarded("model.object-XML"))
    refuseObjectXml(source, OrbScore::QuErrorFormater::Quote(source.lineText()) +
                                " is not what should stand here, or goes beyond a limit");
  std::string rest;
  std::getline(source, rest);
  rest.resize(rest.find_last_not_of(" \t\r") + 1);
  if ((rest != std::string("</") + kObjectXmlRoot + ">" ||
       source.peek() != std::char_traits<char>::eof()) &&
      guarded("model.lines behind"))
    refuseObjectXml(source, "the stream should end after the lattice");
  return lattice;
}

ModelForm formOf(SourceStream& source) {
  silence(source);
  const ModelForm form = formOfHead(source.head());
  source.throwIfUnreadable();
  return form;
}

Model modelIn(const std::string& path, SourceStream& source, ModelForm form,
              const OrbScore::DocumentLimits& limits) {
  if (form == ModelForm::kCompiled && guarded("model.compiled"))
    throw InputError(source.name(), 0,
                     "a compiled form holds no lattice; it can be scored with, from a file");
  Model model;
  if (form == ModelForm::kBinary)
    model.lattice = readBinary(source);
  else if (form == ModelForm::kObjectXml)
    model.lattice = readObjectXml(source);
  else
    model = modelOf(documentIn(path, source, limits));
  if (form != ModelForm::kDocument) checkCounts(source.name(), *model.lattice);
  addLabelsBeside(path, model.labels);
  if (!model.labels.empty()) dropForeignLabels(model);
  return model;
}

// Links to what is gone stay, and every query looks whether an extension is stored.
void removeHighestLevel(Lattice& lattice) {
  const HashtableSQPair* const highest = lattice.getTable(lattice.getNumLevels() - 1);
  if (highest == nullptr) return;
  std::vector<SEQUENCE_NAMESPACE_800::NTSequence> keys;
  for (const ISQCPair& entry : *highest) keys.push_back(*entry.key);
  for (const auto& key : keys) lattice.remove(&key);
}

void writeObjectXml(std::ostream& os, const Lattice& lattice) {
  const std::unique_ptr<const OrbXML_830::XMLDocType> type(
      OrbXML_830::XMLDocType::Create(kObjectXmlRoot, "savexml.dtd", 0));
  OrbXML_830::ExportFormat format;
  type->ToStream(os, format, false);
  OrbXML_830::StartRoot(os, kCopyright);
  lattice.writeObjectXML(os);
  OrbXML_830::EndRoot(os);
}

bool isReplaceable(const std::string& path) {
  std::error_code ignored;
  const auto status = std::filesystem::status(path, ignored);
  return !std::filesystem::exists(status) || std::filesystem::is_regular_file(status);
}

}  // namespace

bool hasRoomForLabels(ModelForm form) noexcept {
  return form == ModelForm::kDocument || form == ModelForm::kPmml;
}

bool keepsLabels(const std::string& path, ModelForm form) {
  return hasRoomForLabels(form) || (path != "-" && isReplaceable(path));
}

Model readModel(const std::string& path, const OrbScore::DocumentLimits& limits) {
  SourceStream source(path);
  const ModelForm form = formOf(source);
  return modelIn(path, source, form, limits);
}

Model readScoredModel(const std::string& path, const OrbScore::DocumentLimits& limits) {
  SourceStream source(path);
  const ModelForm form = formOf(source);
  Model model = modelIn(path, source, form, limits);
  if (form == ModelForm::kDocument) removeHighestLevel(*model.lattice);
  return model;
}

SafeDocument readDocument(const std::string& path, const OrbScore::DocumentLimits& limits) {
  SourceStream source(path);
  const ModelForm form = formOf(source);
  if (form == ModelForm::kDocument) return documentIn(path, source, limits);
  std::ostringstream document;
  writeModel(document, modelIn(path, source, form, limits), ModelForm::kDocument);
  OrbScore::DocumentLimits ours;  // our own text, of a model that was let in already
  ours.bytes = std::numeric_limits<std::size_t>::max() / 2;
  ours.elements = std::numeric_limits<std::size_t>::max() / 2;
  return SafeDocument::Parse(std::move(document).str(), source.name(), ours);
}

void writeModel(std::ostream& os, const Model& model, ModelForm form) {
  switch (form) {
    case ModelForm::kDocument:
      writeLatticeDocument(os, *model.lattice, {.closed = true, .labels = &model.labels});
      break;
    case ModelForm::kPmml:
      throwIfError(writePmml(os, *model.lattice, {.labels = &model.labels}));
      break;
    case ModelForm::kBinary:
      model.lattice->writeObject(os);
      break;
    case ModelForm::kObjectXml:
      writeObjectXml(os, *model.lattice);
      break;
    case ModelForm::kCompiled: {
      const engine::CompiledLattice compiled = engine::compile(*model.lattice);
      const auto image = compiled.image();
      os.write(reinterpret_cast<const char*>(image.data()),
               static_cast<std::streamsize>(image.size()));
      break;
    }
  }
}

bool saveModel(const std::string& path, const Model& model, ModelForm form) {
  AtomicFile file(path);
  SinkStream stream([&file](std::string_view bytes) { file.write(bytes); });
  writeModel(stream, model, form);
  stream.finish();
  const bool isReplaced = isReplaceable(path);
  if (isReplaced && !hasRoomForLabels(form) && !model.labels.empty()) {
    AtomicFile labels(labelFileOf(path));
    writeLabels(labels, model.labels);
    file.prepare();
    labels.prepare();
    file.commit();
    labels.commit();
    return false;
  }
  file.commit();
  return isReplaced && removeLabelsBeside(path);
}

}  // namespace orbseq
