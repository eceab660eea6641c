#include "tests/docs/Layers.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <fstream>

namespace {

namespace fs = std::filesystem;
using test::Layers;
using testing::ElementsAre;
using testing::IsEmpty;

// A tree of files that goes away with the test.
class TemporaryTree {
 public:
  TemporaryTree()
      : root_(fs::temp_directory_path() / ("orbseq_layers_" + std::to_string(::getpid()))) {
    fs::create_directories(root_);
  }
  ~TemporaryTree() { fs::remove_all(root_); }
  TemporaryTree(const TemporaryTree&) = delete;
  TemporaryTree& operator=(const TemporaryTree&) = delete;

  fs::path write(const std::string& name, const std::string& text) const {
    const fs::path path = root_ / name;
    fs::create_directories(path.parent_path());
    std::ofstream(path) << text;
    return path;
  }
  const fs::path& root() const { return root_; }

 private:
  fs::path root_;
};

TEST(Layers, NoRoomIncludesAHigherOne) {
  const Layers layers(ORBSEQ_SOURCE_DIR "/docs/layers.txt");

  EXPECT_GE(layers.rooms(), 8U);
  EXPECT_THAT(layers.violations(ORBSEQ_SOURCE_DIR), IsEmpty());
}

TEST(Layers, AnUpwardIncludeIsFound) {
  const TemporaryTree tree;
  const Layers layers(tree.write("layers.txt", "# rooms\nlow:\nhigh: low\n"));
  tree.write("low/a.cpp", "#include <vector>\n\n#include \"high/b.h\"\n");
  tree.write("high/b.h", "#include \"low/a.h\"\n");

  EXPECT_THAT(layers.violations(tree.root()),
              ElementsAre("low/a.cpp:3: low may not include high/b.h"));
}

TEST(Layers, ANestedRoomIsARoomOfItsOwn) {
  const TemporaryTree tree;
  const Layers layers(tree.write("layers.txt", "top: top/api\ntop/api:\n"));
  tree.write("top/a.cpp", "#include \"top/api/c.h\"\n");
  tree.write("top/api/c.h", "#  include <top/d.h>\n");

  EXPECT_THAT(layers.violations(tree.root()),
              ElementsAre("top/api/c.h:1: top/api may not include top/d.h"));
}

TEST(Layers, ARoomWithoutAFolderIsToldAsSuch) {
  const TemporaryTree tree;
  const Layers layers(tree.write("layers.txt", "gone:\n"));

  EXPECT_THAT(layers.violations(tree.root()), ElementsAre("gone: no such folder"));
}

}  // namespace
