#include "tests/io/modelSamples.h"

#include <memory>
#include <sstream>
#include <utility>

#include "io/ModelFile.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"

namespace orbseq::test {

Model modelOf(const SequenceDictionary& dictionary, ItemLabelMap labels) {
  std::stringstream stream;
  dictionary.writeObject(stream);
  Model model;
  model.lattice->readObject(stream);
  model.labels = std::move(labels);
  return model;
}

Model worldModel(std::uint32_t seed, ItemLabelMap labels) {
  WorldOptions options;
  options.seed = seed;
  options.items = 2 + static_cast<int>(seed % 5);
  options.customers = 10 + static_cast<int>(seed % 7);
  const World world(options);
  Model model = modelOf(world.dictionary, std::move(labels));
  model.lattice->setReductionThreshold(2.0 / options.customers);
  return model;
}

Model smallModel(ItemLabelMap labels) {
  const test::Lattice lattice({{"", 10}, {"(1)", 8}, {"(2)", 5}, {"(1 2)", 4}, {"(1)(2)", 2}}, 4);
  return modelOf(lattice, std::move(labels));
}

ItemLabelMap awkwardLabels() {
  return {{1, "Beans, 250 g"},
          {2, "a \"b\" 'c' <&>"},
          {3, "one\ntwo\r\nthree\rfour"},
          {4, "Größe \xE8\x8C\xB6 \xF0\x9F\x8D\xB5"},
          {5, " blanks at both ends "},
          {6, "back\\slash;\ttab"}};
}

std::string bytesOf(const Model& model, ModelForm form) {
  std::ostringstream stream;
  writeModel(stream, model, form);
  return stream.str();
}

std::map<std::string, std::string> contentsOf(const orbseq::Lattice& lattice) {
  std::map<std::string, std::string> contents;
  for (std::int32_t level = 0; level < lattice.getNumLevels(); ++level) {
    const auto* const table = lattice.getTable(level);
    if (table == nullptr) continue;
    for (const SEQUENCE_NAMESPACE_800::ISQCPair& entry : *table) {
      const std::unique_ptr<const Sequence> sequence(entry.key->createSequence());
      std::ostringstream text;
      text << level << ':';
      if (entry.value == nullptr) {
        text << "no counter";
      } else {
        text << entry.value->getCount() << ':';
        if (const auto links = linksOf(lattice, setsOf(*sequence)))
          for (const auto& [item, position] : *links) text << ' ' << item << '@' << position;
      }
      contents[test::text({setsOf(*sequence)})] = text.str();
    }
  }
  return contents;
}

}  // namespace orbseq::test
