#include "host/PluginLoader.h"

#include <exception>
#include <filesystem>
#include <memory>
#include <new>
#include <string_view>
#include <system_error>
#include <vector>

#include "common/OrbStatus.h"
#include "common/guards.h"
#include "host/DynamicLibrary.h"
#include "host/EnvironmentError.h"
#include "host/oneLine.h"
#include "scoring/hostapi/QuErrorFormater.h"

namespace OrbScore {
namespace {

using Entry = ScoreTranslator* (*)();

constexpr const char* kEntry = "GiveMyTranslator";

Entry entryOf(const DynamicLibrary& library) {
  return reinterpret_cast<Entry>(library.symbol(kEntry));
}

// `message` with `name` in front, unless it begins with it already.
std::string withName(const std::string& name, const std::string& message) {
  return message.starts_with(name + ':') ? message : QuErrorFormater::Format(name, {}, message);
}

// Requires an exception in flight that came out of a plug-in. Throws one of the host's own in its
// place, so that nothing in flight has a type, or an owner, that goes with the library.
[[noreturn]] void rethrowAsOwn(const std::string& name) {
  constexpr std::size_t kMaxBytes = 1024;
  const auto failure = [&name](std::string_view reason) {
    return QuException(QuErrorFormater::Format(name, "the plug-in failed",
                                               oneLine(reason, kMaxBytes, /*quoted=*/false)));
  };
  try {
    throw;
  } catch (const EnvironmentError& error) {
    throw EnvironmentError(withName(name, error.what()));
  } catch (const QuException& error) {
    throw QuException(withName(name, error.what()));
  } catch (const std::bad_alloc&) {
    throw std::bad_alloc();
  } catch (const std::exception& error) {
    throw failure(error.what());
  } catch (const std::exception* error) {  // whoever catches a pointer owns it
    const std::unique_ptr<const std::exception> owned(error);
    throw failure(owned ? owned->what() : "it threw a null pointer");
  } catch (const OrbCommon_830::OrbStatus& status) {
    throw failure("it threw the status " + std::to_string(status.GetErrorCode()));
  } catch (...) {
    throw failure("it threw an exception of an unknown type");
  }
}

// An object of the library's code that keeps the library loaded until it is deleted.
template <class T>
std::shared_ptr<T> keepLoaded(T* object, const std::shared_ptr<const DynamicLibrary>& library) {
  return std::shared_ptr<T>(object, [library](T* owned) { delete owned; });
}

}  // namespace

PluginLoader::PluginLoader(const std::string& path)
    : library_(std::make_shared<const DynamicLibrary>(path)) {
  entryOf(*library_);
}

PluginLoader::~PluginLoader() = default;

const std::string& PluginLoader::GetPath() const noexcept { return library_->path(); }

std::shared_ptr<ScoreTranslator> PluginLoader::MakeTranslator() const {
  ScoreTranslator* translator = nullptr;
  try {
    translator = entryOf(*library_)();
  } catch (...) {
    rethrowAsOwn(GetPath());
  }
  if (translator == nullptr && orbseq::guarded("plug-in.translator"))
    throw EnvironmentError(QuErrorFormater::Format(GetPath(), "not a scoring plug-in",
                                                   "GiveMyTranslator returned no translator"));
  return keepLoaded(translator, library_);
}

std::shared_ptr<ScoreModel> PluginLoader::LoadModel(const SafeDocument& document,
                                                    const std::string& encoding) const {
  DOMElement* const element = document.GetModelElement();
  const std::shared_ptr<ScoreTranslator> translator = MakeTranslator();
  ScoreModel* model = nullptr;
  try {
    model = translator->ParseFromTree(element, encoding);
  } catch (...) {
    rethrowAsOwn(document.GetName());
  }
  if (model == nullptr && orbseq::guarded("plug-in.model"))
    throw QuException(QuErrorFormater::Format(document.GetName(), {}, "the plug-in made no model"));
  return keepLoaded(model, library_);
}

std::string PluginLoader::ProgramFolder() { return DynamicLibrary::programFolder(); }

std::string PluginLoader::FindBeside(const std::string& programFolder,
                                     const std::string& fileName) {
  const std::filesystem::path folder(programFolder);
  std::vector<std::filesystem::path> tried = {folder / fileName, folder / ".." / "lib" / fileName};
  std::filesystem::path installed = folder / ".." / ORBSEQ_LIBDIR / fileName;
  if (installed != tried.back()) tried.insert(tried.begin() + 1, std::move(installed));

  std::string list;
  for (const std::filesystem::path& path : tried) {
    std::error_code ignored;
    if (std::filesystem::exists(path, ignored)) return path.string();
    list += list.empty() ? "looked for " : ", ";
    list += path.string();
  }
  throw EnvironmentError(QuErrorFormater::Format(fileName, "plug-in not found", list));
}

}  // namespace OrbScore
