#include "io/CompiledModel.h"

#include <filesystem>
#include <fstream>
#include <memory>
#include <span>
#include <system_error>
#include <utility>

#include "common/platform/MappedFile.h"
#include "engine/compile.h"
#include "engine/compiledForm.h"
#include "io/IoError.h"
#include "io/ModelFile.h"
#include "io/modelLabels.h"

namespace orbseq {

namespace {

using engine::CompiledLattice;

class MappedImage final : public CompiledLattice::Storage {
 public:
  explicit MappedImage(const std::string& path) : file_(path) {}
  std::span<const std::byte> bytes() const noexcept override { return file_.bytes(); }

 private:
  platform::MappedFile file_;
};

bool isCompiled(const std::string& path) {
  std::error_code ignored;  // a pipe can be read once alone
  if (path == "-" || !std::filesystem::is_regular_file(path, ignored)) return false;
  std::ifstream file(path, std::ios::binary);
  char head[8] = {};
  return file.read(head, sizeof head) &&
         engine::beginsCompiledForm(std::as_bytes(std::span<const char>(head)));
}

CompiledLattice mapLattice(const std::string& path) {
  try {
    return engine::readCompiledForm(std::make_unique<MappedImage>(path));
  } catch (const std::system_error& error) {
    throw FileError(path, "map", error.code().value());
  } catch (const engine::CompiledFormError& error) {
    throw InputError(path, 0, error.what());
  }
}

}  // namespace

CompiledModel readCompiledModel(const std::string& path, const OrbScore::DocumentLimits& limits) {
  if (isCompiled(path)) {
    CompiledModel model{mapLattice(path), {}};
    addLabelsBeside(path, model.labels);
    return model;
  }
  Model model = readScoredModel(path, limits);
  return {engine::compile(*model.lattice), std::move(model.labels)};
}

}  // namespace orbseq
