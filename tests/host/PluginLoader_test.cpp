#include "host/PluginLoader.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>
#include <sys/stat.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>
#include <optional>
#include <sstream>
#include <thread>
#include <vector>

#include "host/EnvironmentError.h"
#include "scoring/hostapi/BaseTranslator.h"
#include "scoring/hostapi/QuException.h"
#include "tests/host/messageOf.h"
#include "tests/support/TempFolder.h"

namespace {

using OrbScore::EnvironmentError;
using OrbScore::PluginLoader;
using OrbScore::QuException;
using OrbScore::SafeDocument;
using OrbScore::ScoreModel;
using OrbScore::ScoreTranslator;
using orbseq::test::TempFolder;
using test::messageOf;

std::string plugin(const std::string& name) { return ORBSEQ_TEST_PLUGINS "/" + name + ".so"; }

bool isLoaded(const std::string& path) {
  void* const handle = dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
  if (handle == nullptr) return false;
  dlclose(handle);
  return true;
}

// A lattice document whose root has these attributes.
SafeDocument document(const std::string& attributes) {
  return SafeDocument::Parse("<SequentialAssociationLattice " + attributes + "/>", "d.xml");
}

std::string display(const ScoreModel& model) {
  std::ostringstream os;
  model.Display(os);
  return os.str();
}

std::string failure(const std::string& path) {
  return messageOf<EnvironmentError>([&path] { PluginLoader loader(path); });
}

// What comes out when the plug-in fails in the way that is named.
std::string refusal(const std::string& kind) {
  const PluginLoader loader(plugin("goodPlugin"));
  return messageOf<QuException>([&] { loader.LoadModel(document("fail='" + kind + "'")); });
}

TEST(PluginLoader, LoadsAModel) {
  const PluginLoader loader(plugin("goodPlugin"));

  const std::shared_ptr<ScoreModel> model = loader.LoadModel(document("label='hello'"));

  EXPECT_EQ(display(*model), "hello");
}

TEST(PluginLoader, HandsTheEncodingOn) {
  const PluginLoader loader(plugin("goodPlugin"));
  const SafeDocument input = document("label='gr\xC3\xBC\xC3\x9F'");

  EXPECT_EQ(display(*loader.LoadModel(input)), "gr\xC3\xBC\xC3\x9F");
  EXPECT_EQ(display(*loader.LoadModel(input, "ISO-8859-1")), "gr\xFC\xDF");
}

TEST(PluginLoader, TheModelNeedsNoDocument) {
  const PluginLoader loader(plugin("goodPlugin"));
  std::optional<SafeDocument> input(document("label='hello'"));
  const std::shared_ptr<ScoreModel> model = loader.LoadModel(*input);

  input.reset();

  EXPECT_EQ(display(*model), "hello");
}

TEST(PluginLoader, MakesTranslatorsThatSeeTheHostsTypes) {
  const PluginLoader loader(plugin("goodPlugin"));

  const std::shared_ptr<ScoreTranslator> translator = loader.MakeTranslator();

  EXPECT_NE(dynamic_cast<OrbScore::BaseTranslator*>(translator.get()), nullptr);
}

TEST(PluginLoader, TheLibraryStaysLoadedAsLongAsTheLoader) {
  const std::string path = plugin("goodPlugin");
  ASSERT_FALSE(isLoaded(path));
  {
    const PluginLoader loader(path);
    EXPECT_TRUE(isLoaded(path));
  }
  EXPECT_FALSE(isLoaded(path));
}

TEST(PluginLoader, TheLibraryStaysLoadedAsLongAsAModel) {
  const std::string path = plugin("goodPlugin");
  ASSERT_FALSE(isLoaded(path));
  std::shared_ptr<ScoreModel> model = PluginLoader(path).LoadModel(document("label='hello'"));

  EXPECT_TRUE(isLoaded(path));
  EXPECT_EQ(display(*model), "hello");

  model.reset();
  EXPECT_FALSE(isLoaded(path));
}

TEST(PluginLoader, TheLibraryStaysLoadedAsLongAsATranslator) {
  const std::string path = plugin("goodPlugin");
  ASSERT_FALSE(isLoaded(path));
  std::shared_ptr<ScoreTranslator> translator = PluginLoader(path).MakeTranslator();

  EXPECT_TRUE(isLoaded(path));

  translator.reset();
  EXPECT_FALSE(isLoaded(path));
}

TEST(PluginLoader, AFailureIsCaughtAfterTheLibraryHasGone) {
  const std::string path = plugin("goodPlugin");

  EXPECT_EQ(messageOf<QuException>([&] { PluginLoader(path).LoadModel(document("fail='own'")); }),
            "d.xml: Item[3]/@id: 7: outside 1..5");

  EXPECT_FALSE(isLoaded(path));
}

TEST(PluginLoader, TheDocumentsNameStandsInFrontOnce) {
  EXPECT_EQ(refusal("own"), "d.xml: Item[3]/@id: 7: outside 1..5");
  EXPECT_EQ(refusal("named"), "d.xml:1:2: bad: 7");
}

TEST(PluginLoader, EveryOtherExceptionOfThePluginBecomesOneOfTheHost) {
  EXPECT_EQ(refusal("standard"), "d.xml: the plug-in failed: seven");
  EXPECT_EQ(refusal("number"),
            "d.xml: the plug-in failed: it threw an exception of an unknown type");
  EXPECT_EQ(refusal("pointer"), "d.xml: the plug-in failed: eight");
  EXPECT_EQ(refusal("no pointer"), "d.xml: the plug-in failed: it threw a null pointer");
}

TEST(PluginLoader, LackOfMemoryStaysWhatItIs) { EXPECT_THROW(refusal("memory"), std::bad_alloc); }

TEST(PluginLoader, RefusesATranslatorThatMakesNoModel) {
  EXPECT_EQ(refusal("null"), "d.xml: the plug-in made no model");
}

TEST(PluginLoader, RefusesAnUnknownEncoding) {
  const PluginLoader loader(plugin("goodPlugin"));

  EXPECT_EQ(messageOf<QuException>([&] { loader.LoadModel(document(""), "nonsense"); }),
            "d.xml: unknown encoding: \"nonsense\"");
}

TEST(PluginLoader, RefusesADocumentWithoutModelBeforeThePluginSeesIt) {
  const PluginLoader loader(plugin("goodPlugin"));

  EXPECT_EQ(messageOf<QuException>([&] { loader.LoadModel(SafeDocument::Parse("<a/>", "d.xml")); }),
            "d.xml:1:1: no sequence model: the root element is \"a\", expected "
            "\"SequentialAssociationLattice\" or \"PMML\"");
}

TEST(PluginLoader, TellsThatTheFileIsMissing) {
  EXPECT_EQ(failure("/no/such.so"),
            "/no/such.so: cannot load the plug-in: /no/such.so: cannot open shared object file: No "
            "such file or directory");
}

TEST(PluginLoader, TellsThatTheFileIsNoLibrary) {
  const TempFolder folder;
  const std::string path =
      folder.file("text.so", "this is no library, but long enough for the head of one: 64 bytes");

  EXPECT_TRUE(failure(path).starts_with(path + ": cannot load the plug-in: ")) << failure(path);
}

TEST(PluginLoader, TellsThatTheFileIsCutShort) {
  const TempFolder folder;
  std::ifstream file(plugin("goodPlugin"), std::ios::binary);
  const std::string whole{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  ASSERT_GT(whole.size(), 8192U);

  for (const std::size_t size : {64U, 100U, 500U, 4096U, 6000U, 8192U}) {
    const std::string path = folder.file("cut.so", whole.substr(0, size));
    EXPECT_EQ(failure(path), path + ": cannot load the plug-in: the file is cut short") << size;
  }
}

// Where a part of the file begins behind its end, whatever its size.
TEST(PluginLoader, TellsThatAPartOfTheFileIsBehindItsEnd) {
  const TempFolder folder;
  std::ifstream file(plugin("goodPlugin"), std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  ElfW(Ehdr) header;
  std::memcpy(&header, bytes.data(), sizeof header);
  ElfW(Phdr) segment;
  std::memcpy(&segment, bytes.data() + header.e_phoff, sizeof segment);
  segment.p_offset = bytes.size() + 1;
  segment.p_filesz = 0;
  std::memcpy(bytes.data() + header.e_phoff, &segment, sizeof segment);

  const std::string path = folder.file("far.so", bytes);
  EXPECT_EQ(failure(path), path + ": cannot load the plug-in: the file is cut short");
}

TEST(PluginLoader, TellsThatANameHoldsANul) {
  EXPECT_EQ(failure(std::string("a\0b", 3)), "a\\x00b: cannot load the plug-in: not a path");
}

TEST(PluginLoader, TellsThatTheFileIsNone) {
  const TempFolder folder;
  const std::string path = folder.path("pipe.so");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);

  EXPECT_EQ(failure(path), path + ": cannot load the plug-in: not a file");
}

TEST(PluginLoader, TellsThatTheEntryIsMissing) {
  const std::string path = plugin("noEntryPlugin");

  EXPECT_TRUE(failure(path).starts_with(path + ": not a scoring plug-in: ")) << failure(path);
  EXPECT_NE(failure(path).find("GiveMyTranslator"), std::string::npos) << failure(path);
  EXPECT_FALSE(isLoaded(path));
}

TEST(PluginLoader, TellsThatTheEntryHandsOutNothing) {
  const std::string path = plugin("nullPlugin");
  const PluginLoader loader(path);
  const std::string message =
      path + ": not a scoring plug-in: GiveMyTranslator returned no translator";

  EXPECT_EQ(messageOf<EnvironmentError>([&] { loader.MakeTranslator(); }), message);
  EXPECT_EQ(messageOf<EnvironmentError>([&] { loader.LoadModel(document("")); }), message);
}

TEST(PluginLoader, TheProgramItselfIsNoPlugin) {
  EXPECT_EQ(failure(""), "cannot load the plug-in: not a path");
}

TEST(PluginLoader, AMessageIsOneLineWhateverThePath) {
  EXPECT_EQ(failure("/no\n.so").find('\n'), std::string::npos);
}

TEST(PluginLoader, EightThreadsLoadModelsAtOnce) {
  const PluginLoader loader(plugin("goodPlugin"));
  std::vector<std::string> shown(8);
  std::vector<std::thread> threads;

  for (std::string& text : shown)
    threads.emplace_back(
        [&loader, &text] { text = display(*loader.LoadModel(document("label='hello'"))); });
  for (std::thread& thread : threads) thread.join();

  EXPECT_EQ(shown, std::vector<std::string>(8, "hello"));
}

TEST(PluginLoader, TellsTheProgramsFolder) {
  EXPECT_TRUE(std::filesystem::exists(PluginLoader::ProgramFolder() + "/host_tests"));
}

TEST(PluginLoader, FindsAPluginBesideTheProgram) {
  const TempFolder folder;
  std::filesystem::create_directories(folder.path("bin"));
  std::filesystem::create_directories(folder.path("lib"));
  const std::string beside = folder.file("bin/plugin.so", "");
  folder.file("lib/plugin.so", "");

  EXPECT_EQ(PluginLoader::FindBeside(folder.path("bin"), "plugin.so"), beside);
}

TEST(PluginLoader, FindsAPluginInTheLibraryFolderNextToThePrograms) {
  const TempFolder folder;
  std::filesystem::create_directories(folder.path("bin"));
  std::filesystem::create_directories(folder.path("lib"));
  const std::string library = folder.file("lib/plugin.so", "");

  EXPECT_TRUE(std::filesystem::equivalent(PluginLoader::FindBeside(folder.path("bin"), "plugin.so"),
                                          library));
}

TEST(PluginLoader, TellsWhereItLookedForAPlugin) {
  const std::string message =
      messageOf<EnvironmentError>([] { PluginLoader::FindBeside("/no/bin", "plugin.so"); });

  EXPECT_TRUE(message.starts_with("plugin.so: plug-in not found: looked for /no/bin/plugin.so, "))
      << message;
  EXPECT_TRUE(message.ends_with("/no/bin/../lib/plugin.so")) << message;
}

}  // namespace
