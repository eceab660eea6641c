// Memory that runs out while a lattice is exported or written. Files are saved in
// outOfMemoryFiles_test.cpp.

#include <gtest/gtest.h>

#include <ostream>
#include <sstream>
#include <string>

#include "lattice/LatticeDocument.h"
#include "tests/hostile/everyAllocation.h"
#include "tests/hostile/labelledModel.h"
#include "tests/hostile/latticeFiles.h"

namespace {

using namespace orbseq::test;

// For documents, which take so many allocations for a sequence that few must do.
class FewSequences {
 public:
  const SequenceDictionary& dictionary() const noexcept { return lattice_; }

 private:
  Lattice lattice_{{{"", 20},
                    {"(1)", 12},
                    {"(2)", 10},
                    {"(3)", 8},
                    {"(1)(2)", 7},
                    {"(2)(3)", 5},
                    {"(1 2)", 6},
                    {"(1 2)(3)", 4}},
                   4};
};

// Written by `Writer` to a stream in memory, which may run out of it, too. Then the stream is bad.
template <class Writer, class Written = FewSequences>
class Write {
 public:
  End run() {
    const bool isOk = Writer::write(lattice_.dictionary(), stream_);
    return isOk && stream_ ? End::kDone : End::kReported;
  }
  void check(End end) {
    if (end != End::kDone) {
      stream_ = std::ostringstream();
      EXPECT_EQ(run(), End::kDone);
    }
    static const std::string expected = stream_.str();
    EXPECT_TRUE(stream_.str() == expected);
    static const auto answers = allAnswers(Written().dictionary());
    EXPECT_TRUE(allAnswers(lattice_.dictionary()) == answers);
  }

 private:
  Written lattice_;
  std::ostringstream stream_;
};

struct LatticeWriter {
  static bool write(const SequenceDictionary& dictionary, std::ostream& os) {
    return dictionary.ExportLatticeXML(os, 0.25).IsOK();
  }
};
struct LabelledWriter {
  static bool write(const SequenceDictionary& dictionary, std::ostream& os) {
    orbseq::writeLatticeDocument(os, dictionary, {.closed = true, .labels = &labels()});
    return true;
  }
};
struct RulesWriter {
  static bool write(const SequenceDictionary& dictionary, std::ostream& os) {
    return dictionary.ExportRulesXML(os, 0, 1, 0, 1, 0, 9, 3, 1.5, 'C', false).IsOK();
  }
};
struct PmmlWriter {
  static bool write(const SequenceDictionary& dictionary, std::ostream& os) {
    return orbseq::writePmml(os, dictionary, {.labels = &labels()}).IsOK();
  }
};
struct BinaryWriter {
  static bool write(const SequenceDictionary& dictionary, std::ostream& os) {
    return dictionary.writeObject(os) > 0;
  }
};
struct ObjectXmlWriter {
  static bool write(const SequenceDictionary& dictionary, std::ostream& os) {
    return dictionary.writeObjectXML(os) > 0;
  }
};

TEST(OutOfMemory, ExportingTheLattice) {
  failEveryAllocationOf<Write<LatticeWriter>>({End::kReported});
}

TEST(OutOfMemory, ExportingTheLatticeWithLabels) {
  failEveryAllocationOf<Write<LabelledWriter>>({End::kReported, End::kBadAlloc});
}

TEST(OutOfMemory, ExportingTheRules) {
  failEveryAllocationOf<Write<RulesWriter>>({End::kReported});
}

TEST(OutOfMemory, ExportingTheRulesWithLabels) {
  failEveryAllocationOf<Write<PmmlWriter>>({End::kReported});
}

TEST(OutOfMemory, WritingBinary) {
  failEveryAllocationOf<Write<BinaryWriter, ValidLattice>>(
      {End::kReported, End::kBadAlloc, End::kIoException});
}

TEST(OutOfMemory, WritingObjectXml) {
  failEveryAllocationOf<Write<ObjectXmlWriter, ValidLattice>>(
      {End::kReported, End::kBadAlloc, End::kIoException});
}

}  // namespace
