// How long a model takes to be written and read in each form, and how much memory, beside a bare
// parse of its document by Xerces-C.
//
//   forms_bench [SEQUENCES [ROUNDS [FOLDER]]]
//
// The model is a seeded lattice, closed under leaving items out, of about SEQUENCES sequences of up
// to three items. Every step runs in a process of its own, ROUNDS times, the steps in turn; the
// table shows the median time, the ratio to the bare parse, and the largest peak of memory.

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "bench/steps.h"
#include "io/ModelFile.h"
#include "sequence/NTSequence.h"
#include "sequence/SequenceCounter.h"

namespace {

using orbseq::Model;
using orbseq::ModelForm;
using orbseq::bench::secondsOf;
using orbseq::bench::Step;
using SEQUENCE_NAMESPACE_800::SeqDictionarySettings;
using SEQUENCE_NAMESPACE_800::SequenceCounter;

constexpr std::uint32_t kSeed = 20'261'121;
constexpr std::size_t kMostForPmml = 300'000;  // a tree of more would take tens of gigabytes
constexpr double kPairShare = 0.8;             // of all pairs of items, those that are stored

void store(Model& model, const std::vector<int>& items, int count) {
  std::vector<std::vector<int>> sets;
  std::vector<const int*> pointers;
  for (const int item : items) sets.push_back({1, item});
  for (const auto& set : sets) pointers.push_back(set.data());
  const SequenceCounter counter(0, count, nullptr);
  model.lattice->addSequence(pointers.data(), static_cast<int>(pointers.size()), &counter);
}

// Items 1 .. n, a share of the pairs (a)(b), and every (a)(b)(c) whose three pairs are stored.
Model makeModel(std::size_t sequences) {
  const int n = static_cast<int>(
      std::cbrt(static_cast<double>(sequences) / (kPairShare * kPairShare * kPairShare)));
  Model model;
  SeqDictionarySettings settings;
  settings.numLevels = 5;
  model.lattice = std::make_unique<orbseq::Lattice>(settings);
  std::mt19937 random(kSeed);
  const auto draw = [&random](int from, int to) {
    return from + static_cast<int>(random() % static_cast<std::uint32_t>(to - from));
  };
  store(model, {}, 1'000'000);
  std::set<std::pair<int, int>> pairs;
  for (int a = 1; a <= n; ++a) {
    store(model, {a}, draw(100'000, 900'000));
    model.labels[a] = "label of item " + std::to_string(a);
    for (int b = 1; b <= n; ++b)
      if (static_cast<double>(random()) < kPairShare * 4294967296.0) pairs.emplace(a, b);
  }
  for (const auto& [a, b] : pairs) store(model, {a, b}, draw(10'000, 100'000));
  for (const auto& [a, b] : pairs)
    for (int c = 1; c <= n; ++c)
      if (pairs.contains({b, c}) && pairs.contains({a, c}))
        store(model, {a, b, c}, draw(1'000, 10'000));
  model.lattice->buildLattice();
  return model;
}

void parseBare(const std::string& path) {
  xercesc::XMLPlatformUtils::Initialize();
  xercesc::XercesDOMParser parser;
  parser.setLoadExternalDTD(false);
  parser.parse(path.c_str());
  if (parser.getErrorCount() != 0 || parser.getDocument()->getDocumentElement() == nullptr)
    throw std::runtime_error("the bare parse failed");
}

}  // namespace

int main(int argc, char** argv) {
  const std::size_t sequences = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 100'000;
  const int rounds = argc > 2 ? std::atoi(argv[2]) : 5;
  const std::filesystem::path folder =
      argc > 3 ? argv[3] : std::filesystem::temp_directory_path() / "orbseq-forms";
  std::filesystem::create_directories(folder);
  OrbScore::DocumentLimits limits;
  limits.bytes = std::size_t{1} << 36U;
  limits.elements = std::size_t{1} << 36U;

  const std::map<ModelForm, std::string> files = {
      {ModelForm::kDocument, (folder / "model.xml").string()},
      {ModelForm::kPmml, (folder / "model.pmml").string()},
      {ModelForm::kBinary, (folder / "model.bin").string()},
      {ModelForm::kObjectXml, (folder / "model.objxml").string()}};
  // In a child, so that no step starts with the model's memory.
  orbseq::bench::measured([&] {
    const Model model = makeModel(sequences);
    for (const auto& [form, path] : files) orbseq::saveModel(path, model, form);
    std::printf("%d sequences\n", model.lattice->NumberOfSequences());
    std::fflush(stdout);
    return 0.0;
  });

  std::vector<Step> steps;
  const std::string document = files.at(ModelForm::kDocument);
  steps.push_back({"bare parse", [&] { return secondsOf([&] { parseBare(document); }); }, {}});
  const std::string binary = files.at(ModelForm::kBinary);
  for (const auto& [form, path] : files) {
    const std::string name = orbseq::nameOf(form);
    const ModelForm to = form;
    const std::string file = path;
    const bool isTooLarge = form == ModelForm::kPmml && sequences > kMostForPmml;
    if (isTooLarge) continue;
    steps.push_back(
        {"read " + name,
         [file, &limits] { return secondsOf([&] { orbseq::readModel(file, limits); }); },
         {}});
    steps.push_back({"write " + name,
                     [binary, file, to, &limits] {
                       const Model model = orbseq::readModel(binary, limits);
                       return secondsOf([&] { orbseq::saveModel(file + ".copy", model, to); });
                     },
                     {}});
  }
  orbseq::bench::measure(steps, rounds);

  for (const auto& [form, path] : files)
    std::printf("%-16s %10.1f MiB on disk\n", orbseq::nameOf(form),
                static_cast<double>(std::filesystem::file_size(path)) / 1048576.0);
  const double bareTime = medianSeconds(steps[0]);
  const double bareMemory = peakMebibytes(steps[0]);
  std::printf("%-16s %10s %8s %10s %8s\n", "step", "seconds", "ratio", "peak MiB", "ratio");
  for (const Step& step : steps)
    std::printf("%-16s %10.3f %8.2f %10.1f %8.2f\n", step.name.c_str(), medianSeconds(step),
                medianSeconds(step) / bareTime, peakMebibytes(step),
                peakMebibytes(step) / bareMemory);
  std::filesystem::remove_all(folder);
  return 0;
}
