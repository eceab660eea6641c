// A scoring plug-in: a shared library whose entry GiveMyTranslator hands out a translator.
//
// The entry is: extern "C" OrbScore::ScoreTranslator* GiveMyTranslator(); the caller owns what it
// returns. The plug-in's references to the host are resolved from the process, so the program must
// be linked with the host library.
//
// Lifetime. The library stays loaded as long as the loader, a translator or a model made through
// it lives. What a model hands out (results, values) must go before the last of these.
//
// Errors. EnvironmentError for a plug-in that is missing, is no library, lacks the entry, or whose
// entry hands out nothing. An exception that leaves the plug-in comes out as a QuException of the
// host's own, whatever its type was, since that type may go with the library; only std::bad_alloc
// stays what it is.
//
// Threads. Every const operation may be called by any number of threads at once.

#ifndef HOST_PLUGINLOADER_H_
#define HOST_PLUGINLOADER_H_

#include <memory>
#include <string>

#include "host/SafeDocument.h"
#include "scoring/hostapi/HostExport.h"
#include "scoring/hostapi/ScoreModel.h"
#include "scoring/hostapi/ScoreTranslator.h"

namespace OrbScore {

class DynamicLibrary;

class ORBSCORE_EXPORT PluginLoader {
 public:
  // Loads the plug-in. A path without "/" is looked for where the system looks for libraries.
  explicit PluginLoader(const std::string& path);
  ~PluginLoader();
  PluginLoader(const PluginLoader&) = delete;
  PluginLoader& operator=(const PluginLoader&) = delete;

  const std::string& GetPath() const noexcept;

  // A new translator; never null.
  std::shared_ptr<ScoreTranslator> MakeTranslator() const;

  // Reads the document's model element through a translator of its own; never null. `encoding` is
  // that of the model's narrow texts. Errors begin with the document's name.
  std::shared_ptr<ScoreModel> LoadModel(const SafeDocument& document,
                                        const std::string& encoding = "UTF-8") const;

  // The folder of the running program, without "/" at the end.
  static std::string ProgramFolder();

  // The path of the file in `programFolder`, or else in the library folder beside it ("../lib" and
  // the installation's own name for it): the first that exists. Throws EnvironmentError, naming
  // the paths that it tried, when there is none.
  static std::string FindBeside(const std::string& programFolder, const std::string& fileName);

 private:
  std::shared_ptr<const DynamicLibrary> library_;
};

}  // namespace OrbScore

#endif  // HOST_PLUGINLOADER_H_
