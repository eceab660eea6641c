#include "tests/docs/Layers.h"

#include <gmock/gmock.h>

#include "tests/support/TempFolder.h"

namespace {

namespace fs = std::filesystem;
using orbseq::test::TempFolder;
using test::Layers;
using testing::ElementsAre;
using testing::IsEmpty;

// Writes a file of a tree, with the folders that it lies in.
fs::path write(const TempFolder& tree, const std::string& name, const std::string& text) {
  fs::create_directories((tree.path() / name).parent_path());
  return tree.file(name, text);
}

TEST(Layers, NoRoomIncludesAHigherOne) {
  const Layers layers(ORBSEQ_SOURCE_DIR "/docs/layers.txt");

  EXPECT_GE(layers.rooms(), 8U);
  EXPECT_THAT(layers.violations(ORBSEQ_SOURCE_DIR), IsEmpty());
}

TEST(Layers, AnUpwardIncludeIsFound) {
  const TempFolder tree;
  const Layers layers(write(tree, "layers.txt", "# rooms\nlow:\nhigh: low\n"));
  write(tree, "low/a.cpp", "#include <vector>\n\n#include \"high/b.h\"\n");
  write(tree, "high/b.h", "#include \"low/a.h\"\n");

  EXPECT_THAT(layers.violations(tree.path()),
              ElementsAre("low/a.cpp:3: low may not include high/b.h"));
}

TEST(Layers, ANestedRoomIsARoomOfItsOwn) {
  const TempFolder tree;
  const Layers layers(write(tree, "layers.txt", "top: top/api\ntop/api:\n"));
  write(tree, "top/a.cpp", "#include \"top/api/c.h\"\n");
  write(tree, "top/api/c.h", "#  include <top/d.h>\n");

  EXPECT_THAT(layers.violations(tree.path()),
              ElementsAre("top/api/c.h:1: top/api may not include top/d.h"));
}

TEST(Layers, ARoomWithoutAFolderIsToldAsSuch) {
  const TempFolder tree;
  const Layers layers(write(tree, "layers.txt", "gone:\n"));

  EXPECT_THAT(layers.violations(tree.path()), ElementsAre("gone: no such folder"));
}

}  // namespace
