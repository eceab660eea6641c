#include "io/modelLabels.h"

#include <charconv>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

#include "common/Limits.h"
#include "common/guards.h"
#include "io/AtomicFile.h"
#include "io/CsvReader.h"
#include "io/IoError.h"
#include "io/csvField.h"
#include "scoring/hostapi/DictVar.h"
#include "scoring/hostapi/QuErrorFormater.h"
#include "scoring/hostapi/ScoreDictionary.h"

namespace orbseq {

namespace {

std::optional<std::int32_t> itemOf(std::string_view text) {
  std::int32_t item = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), item);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return item;
}

}  // namespace

ItemLabelMap labelsOf(const OrbScore::ScoreDictionary* dictionary) {
  ItemLabelMap labels;
  if (dictionary == nullptr) return labels;
  for (const std::string& name : dictionary->GetNames()) {
    const auto item = itemOf(name);
    if (!item || std::to_string(*item) != name) continue;
    const OrbScore::ScoreDictVar* const variable = dictionary->GetVariable(name);
    if (variable != nullptr && !variable->GetMappedLabel().empty())
      labels.emplace(*item, variable->GetMappedLabel());
  }
  return labels;
}

std::string labelFileOf(const std::string& modelPath) {
  std::error_code error;
  if (!std::filesystem::is_symlink(modelPath, error)) return modelPath + ".labels.csv";
  const auto target = std::filesystem::weakly_canonical(modelPath, error);
  return (error ? modelPath : target.string()) + ".labels.csv";
}

bool removeLabelsBeside(const std::string& modelPath) {
  const std::string path = labelFileOf(modelPath);
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return false;
  std::filesystem::remove(path, error);
  if (error) throw FileError(path, "remove", error.value());
  return true;
}

void addLabelsBeside(const std::string& modelPath, ItemLabelMap& labels) {
  const std::string path = labelFileOf(modelPath);
  std::error_code ignored;
  if (modelPath == "-" || !std::filesystem::exists(path, ignored)) return;
  CsvReader reader(path, kLabelLimits);
  const std::size_t item = reader.columnOf("item");
  const std::size_t label = reader.columnOf("label");
  while (reader.next()) {
    const auto number = itemOf(reader.field(item));
    if (!number && guarded("labels.item"))
      throw InputError(reader.name(), reader.row(), item + 1,
                       OrbScore::QuErrorFormater::Quote(reader.field(item)) +
                           " is no item number in -2147483648..2147483647");
    if (!reader.field(label).empty()) labels.emplace(*number, reader.field(label));
  }
}

void writeLabels(AtomicFile& file, const ItemLabelMap& labels) {
  file.write("item,label\n");
  for (const auto& [item, label] : labels)
    file.write(std::to_string(item) + "," + csvField(label) + "\n");
}

}  // namespace orbseq
