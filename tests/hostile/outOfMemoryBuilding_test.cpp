// Memory that runs out while a lattice is linked and compiled.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

#include "engine/compile.h"
#include "tests/hostile/everyAllocation.h"
#include "tests/hostile/latticeFiles.h"
#include "tests/support/World.h"

namespace {

using namespace orbseq::test;

class BuildLattice {
 public:
  BuildLattice() : dictionary_(smallTables(4)) {
    for (const char* set : {"(1)", "(2)", "(3)", "(4)", "(1)(2)", "(1)(3)", "(2)(3)", "(1 2)",
                            "(3 4)", "(1)(2)(3)", "(1 2)(3)", "(4)(3)(2)", "(2)(3 4)"})
      store(dictionary_, history(set), 9);
    store(dictionary_, {}, 20);
  }
  End run() { return dictionary_.buildLattice().IsOK() ? End::kDone : End::kReported; }
  void check(End end) {
    EXPECT_EQ(dictionary_.isLatticeBuilt(), end == End::kDone);
    EXPECT_TRUE(dictionary_.buildLattice().IsOK());
    EXPECT_EQ(futureItems(dictionary_, history("(1 2)")),
              std::vector<Advice>({{3, 1.0, 9.0 / 20.0, 1.0}, {2, 1.0, 9.0 / 20.0, 1.0}}));
  }

 private:
  SequenceDictionary dictionary_;
};

TEST(OutOfMemory, BuildingTheLattice) { failEveryAllocationOf<BuildLattice>({End::kReported}); }

class Compile {
 public:
  End run() {
    compiled_ = std::make_unique<const orbseq::engine::CompiledLattice>(
        orbseq::engine::compile(lattice_.dictionary()));
    return End::kDone;
  }
  void check(End end) {
    EXPECT_EQ(compiled_ != nullptr, end == End::kDone);
    expectValidLattice(lattice_.dictionary());
    if (end != End::kDone) run();
    static const std::vector<std::byte> expected = [this] {
      const auto image = compiled_->image();
      return std::vector<std::byte>(image.begin(), image.end());
    }();
    const auto image = compiled_->image();
    EXPECT_TRUE(std::equal(image.begin(), image.end(), expected.begin(), expected.end()));
  }

 private:
  ValidLattice lattice_;
  std::unique_ptr<const orbseq::engine::CompiledLattice> compiled_;
};

TEST(OutOfMemory, Compiling) { failEveryAllocationOf<Compile>({End::kBadAlloc}); }

}  // namespace
