// The compiled form: what is written is what is read, and what is not right is refused.

#include "engine/compiledForm.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <limits>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "engine/Recommender.h"
#include "engine/compile.h"
#include "tests/support/TempFolder.h"
#include "tests/support/World.h"

namespace {

using namespace orbseq::test;
using namespace orbseq::engine;
using orbseq::test::History;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

using Bytes = std::vector<std::byte>;

class Kept final : public CompiledLattice::Storage {
 public:
  explicit Kept(Bytes bytes) : bytes_(std::move(bytes)) {}
  std::span<const std::byte> bytes() const noexcept override { return bytes_; }

 private:
  Bytes bytes_;  // of exactly the image's size, so that no read beyond goes unseen
};

CompiledLattice latticeOf(const Bytes& bytes) {
  return readCompiledForm(std::make_unique<Kept>(bytes));
}

std::string refusalOf(const Bytes& bytes) {
  return errorOf<CompiledFormError>([&] { latticeOf(bytes); });
}

Bytes bytesOf(const CompiledLattice& lattice) {
  return {lattice.image().begin(), lattice.image().end()};
}

template <class T>
T valueAt(const Bytes& bytes, std::size_t offset) {
  T value;
  std::memcpy(&value, bytes.data() + offset, sizeof value);
  return value;
}

template <class T>
Bytes changed(Bytes bytes, std::size_t offset, T value) {
  std::memcpy(bytes.data() + offset, &value, sizeof value);
  return bytes;
}

// With the checksum that the bytes have.
Bytes sealed(Bytes bytes) { return changed(bytes, offsetof(Header, checksum), checksumOf(bytes)); }

Header headerOf(const Bytes& bytes) { return valueAt<Header>(bytes, 0); }

std::vector<Advice> askAll(const CompiledLattice& lattice, const std::vector<History>& histories) {
  const Recommender recommender(lattice);
  Workspace workspace;
  Answers answers;
  for (const History& history : histories) {
    orbseq::engine::History asked;
    for (const Items& set : history) asked.addSet(set);
    for (const int maxCount : {2, 20}) {
      recommender.currentItems(asked, maxCount, workspace, answers);
      recommender.futureItems(asked, maxCount, true, workspace, answers);
      recommender.futureItems(asked, maxCount, false, workspace, answers);
    }
  }
  return adviceOf(answers);
}

// With climbs and proposals of both kinds, a stranger, and three levels.
CompiledLattice small() {
  return compile(Lattice({{"", 10},
                          {"(1)", 8},
                          {"(2)", 5},
                          {"(1 2)", 4},
                          {"(1)(2)", 3},
                          {"(2)(2)", 2},
                          {"(2)(5)", 2},
                          {"(1 2)(2)", 2},
                          {"(1)(1 2)", 1}}));
}

// Items far apart, so that there is no look-up.
CompiledLattice smallAndWide() {
  return compile(Lattice({{"", 10},
                          {"(1)", 8},
                          {"(90000)", 5},
                          {"(1 90000)", 4},
                          {"(1)(90000)", 3},
                          {"(1)(-5)", 3},
                          {"(1 90000)(90000)", 2}}));
}

const std::vector<History> kHistories = {{},
                                         {{}},
                                         {{1}},
                                         {{2}},
                                         {{1}, {2}},
                                         {{1, 2}},
                                         {{1, 2}, {2}},
                                         {{1}, {1, 2}},
                                         {{2}, {5}},
                                         {{1, 2}, {1, 2}},
                                         {{9}, {1}, {}},
                                         {{1, 90000}},
                                         {{1, 2, 5}, {1, 2, 5}, {1, 2, 5}, {1, 2, 5}},
                                         {{-5}, {1, 90000}, {1, 90000}, {90000}}};

TEST(CompiledForm, WhatIsReadHasTheSameBytesAndGivesTheSameAnswers) {
  std::size_t answers = 0;
  for (std::uint32_t seed = 1; seed <= 300; ++seed) {
    const World world = randomWorld(seed);
    const CompiledLattice lattice = compile(world.dictionary);

    const CompiledLattice again = latticeOf(bytesOf(lattice));

    EXPECT_EQ(bytesOf(again), bytesOf(lattice)) << "seed " << seed;
    const auto wanted = askAll(lattice, world.histories);
    EXPECT_EQ(askAll(again, world.histories), wanted) << "seed " << seed;
    answers += wanted.size();
  }
  EXPECT_GT(answers, 1000U);
}

TEST(CompiledForm, AnEmptyDictionarysImageIsRead) {
  const CompiledLattice lattice = latticeOf(bytesOf(compile(SequenceDictionary(smallTables(4)))));

  EXPECT_EQ(lattice.nodeCount(), 0U);
  EXPECT_TRUE(askAll(lattice, kHistories).empty());
}

TEST(CompiledForm, ALatticeThatIsMovedAnswersAsBefore) {
  CompiledLattice lattice = small();
  const auto wanted = askAll(lattice, kHistories);

  CompiledLattice moved = std::move(lattice);
  EXPECT_EQ(askAll(moved, kHistories), wanted);
  moved = smallAndWide();
  EXPECT_EQ(askAll(moved, kHistories), askAll(smallAndWide(), kHistories));
  EXPECT_FALSE(wanted.empty());
}

TEST(CompiledForm, ItsBeginningTellsIt) {
  const Bytes bytes = bytesOf(small());
  const char* const text = "ORBSEQC\n";

  EXPECT_EQ(std::memcmp(bytes.data(), text, 8), 0);
  EXPECT_TRUE(beginsCompiledForm(bytes));
  EXPECT_TRUE(beginsCompiledForm(std::span(bytes).first(8)));
  EXPECT_FALSE(beginsCompiledForm(std::span(bytes).first(7)));
  EXPECT_FALSE(beginsCompiledForm({}));
  EXPECT_FALSE(beginsCompiledForm(std::span(bytes).subspan(1)));
}

TEST(CompiledForm, EveryBeginningIsRefused) {
  const Bytes bytes = bytesOf(small());
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    const Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
    const std::string error = refusalOf(cut);
    EXPECT_THAT(error, MatchesRegex("offset 0x[0-9A-F]+: .+")) << size << " bytes";
    if (size < sizeof(Header)) {
      EXPECT_THAT(error, HasSubstr("cut off in its header")) << size;
    }
  }
}

TEST(CompiledForm, ATrailingByteIsRefused) {
  Bytes bytes = bytesOf(small());
  bytes.push_back(std::byte{0});

  EXPECT_THAT(refusalOf(bytes), StartsWith("offset 0x10: the compiled form says it has "));
}

TEST(CompiledForm, EveryChangedBitIsRefused) {
  const Bytes bytes = bytesOf(small());
  ASSERT_EQ(refusalOf(bytes), "");
  for (std::size_t bit = 0; bit < 8 * bytes.size(); ++bit) {
    Bytes other = bytes;
    other[bit / 8] ^= std::byte{1} << (bit % 8);
    ASSERT_NE(refusalOf(other), "") << "bit " << bit;
  }
}

TEST(CompiledForm, TheHeadersFieldsAreTold) {
  const Bytes bytes = bytesOf(small());
  const std::string size = std::to_string(bytes.size());

  EXPECT_EQ(refusalOf(changed(bytes, 0, std::uint64_t{1})), "offset 0x0: this is no compiled form");
  EXPECT_EQ(refusalOf(changed(bytes, offsetof(Header, version), std::uint32_t{7})),
            "offset 0x8: the compiled form has version 7; this build reads 2");
  EXPECT_EQ(refusalOf(changed(bytes, offsetof(Header, byteOrder), std::uint32_t{0x04030201})),
            "offset 0xC: the compiled form is of another byte order");
  EXPECT_EQ(refusalOf(changed(bytes, offsetof(Header, bytes), std::uint64_t{5})),
            "offset 0x10: the compiled form says it has 5 bytes, and has " + size);
  EXPECT_EQ(refusalOf(changed(bytes, offsetof(Header, checksum), std::uint64_t{0})),
            "offset 0x18: the compiled form does not fit its checksum");
}

// One entry of each section made wrong, under a right checksum.
TEST(CompiledForm, WrongPartsAreRefusedWhereTheyStand) {
  const Bytes bytes = bytesOf(small());
  const Layout layout = layoutOf(headerOf(bytes));
  const auto refusal = [&](std::size_t offset, std::uint32_t value) {
    return refusalOf(sealed(changed(bytes, offset, value)));
  };

  EXPECT_THAT(refusal(layout.nodes + offsetof(Node, climbs), 1), HasSubstr("runs of the nodes"));
  EXPECT_THAT(refusal(layout.nodes + offsetof(Node, joins), 1000), HasSubstr("runs of the nodes"));
  EXPECT_THAT(refusal(layout.nodes + sizeof(Node) + offsetof(Node, opens), kNone),
              HasSubstr("runs of the nodes"));
  EXPECT_THAT(refusal(layout.climbs + offsetof(Climb, marked), 0), HasSubstr("to the next level"));
  EXPECT_THAT(refusal(layout.climbs + offsetof(Climb, marked), kNone),
              HasSubstr("to the next level"));
  EXPECT_THAT(refusal(layout.climbs + offsetof(Climb, item), 3),
              HasSubstr("a climb names no item"));
  EXPECT_THAT(refusal(layout.proposals, 3), HasSubstr("a proposal names no item"));
  EXPECT_THAT(refusal(layout.items, 2), HasSubstr("item 1 is no item"));  // two items 2
  EXPECT_THAT(refusal(layout.items + offsetof(Item, node), 2), HasSubstr("item 0 is no item"));
  EXPECT_THAT(refusal(layout.items + offsetof(Item, marks), 1), HasSubstr("item 0 is no item"));
  EXPECT_THAT(refusal(layout.items + offsetof(Item, marks), kMostItems),
              HasSubstr("item 0 is no item"));
  EXPECT_THAT(refusal(layout.items + offsetof(Item, marks), kStranger),
              HasSubstr("item 0 is no item"));
  EXPECT_THAT(refusal(layout.items + offsetof(Item, marks), 0),
              HasSubstr("do not tell of all climbs"));
  EXPECT_THAT(refusal(layout.popular, 3), HasSubstr("a popular item is none"));
  EXPECT_THAT(refusal(layout.lookup, 1), HasSubstr("look-up of items does not fit"));
  EXPECT_THAT(refusal(layout.lookup + 2 * sizeof(ItemId), 0),
              HasSubstr("look-up of items does not fit"));
  EXPECT_THAT(refusal(offsetof(Header, levels) + 4, 1), HasSubstr("levels do not hold all"));
  EXPECT_THAT(refusal(offsetof(Header, levels) + 12, 1), HasSubstr("levels do not follow"));
  EXPECT_THAT(refusal(offsetof(Header, hasStrangers), 0), HasSubstr("number of items"));
}

TEST(CompiledForm, LevelsThatLeaveTheLastNodeOutAreRefused) {
  const Bytes bytes = bytesOf(small());
  const Header header = headerOf(bytes);
  Bytes wrong = bytes;
  for (std::size_t size = 0; size <= Header::kLevels; ++size)
    if (header.levels[size] == header.nodes)
      wrong = changed(std::move(wrong), offsetof(Header, levels) + size * sizeof header.levels[0],
                      header.nodes - 1);

  EXPECT_THAT(refusalOf(sealed(wrong)), HasSubstr("levels do not hold all"));
}

// An entry behind the last item tells of none.
TEST(CompiledForm, ALookUpThatGoesOnBehindItsItemsDoesNoHarm) {
  const Bytes bytes = bytesOf(small());
  const Header header = headerOf(bytes);
  const auto longer = [&](std::uint32_t entry) {
    Bytes made = bytes;
    made.resize(made.size() + sizeof entry);
    made = changed(std::move(made), bytes.size(), entry);
    made = changed(std::move(made), offsetof(Header, bytes), header.bytes + sizeof entry);
    return sealed(changed(std::move(made), offsetof(Header, lookup), header.lookup + 1));
  };

  EXPECT_EQ(askAll(latticeOf(longer(kNone)), kHistories), askAll(small(), kHistories));
  EXPECT_THAT(refusalOf(longer(0)), HasSubstr("look-up of items does not fit"));
}

// Without its last entry the look-up is one of fewer items.
TEST(CompiledForm, ALookUpThatEndsTooEarlyIsRefused) {
  Bytes bytes = bytesOf(small());
  const Header header = headerOf(bytes);
  bytes.resize(bytes.size() - sizeof(std::uint32_t));
  bytes = changed(std::move(bytes), offsetof(Header, bytes), header.bytes - sizeof(std::uint32_t));
  bytes = changed(std::move(bytes), offsetof(Header, lookup), header.lookup - 1);

  EXPECT_THAT(refusalOf(sealed(bytes)), HasSubstr("the look-up of items lacks some"));
}

// Climbs that join need what keeps a search from going through them again and again.
TEST(CompiledForm, JoinsThatTheHeaderDeniesAreRefused) {
  const Bytes bytes = sealed(changed(bytesOf(small()), offsetof(Header, hasJoins), 0U));

  EXPECT_THAT(refusalOf(bytes), HasSubstr("climbs join item sets, which the header denies"));
}

// What the lattice is made of, each word of it in turn hostile, under a right checksum: it is
// refused, or it is read and every query ends.
void tryEveryWord(const CompiledLattice& lattice) {
  const Bytes bytes = bytesOf(lattice);
  const Header header = headerOf(bytes);
  int refused = 0;
  int read = 0;
  for (std::size_t offset = 0; offset + 4 <= bytes.size(); offset += 4) {
    const auto value = valueAt<std::uint32_t>(bytes, offset);
    const std::set<std::uint32_t> hostile = {0U,
                                             1U,
                                             2U,
                                             value - 1,
                                             value + 1,
                                             value ^ 0x80U,
                                             header.nodes,
                                             header.nodes - 1,
                                             header.climbs,
                                             header.items,
                                             0x7FFFFFFFU,
                                             0x80000000U,
                                             0xFFFFFFF0U,
                                             kNone};
    for (const std::uint32_t other : hostile) {
      if (other == value) continue;
      SCOPED_TRACE("offset " + std::to_string(offset) + ", value " + std::to_string(other));
      std::optional<CompiledLattice> changedLattice;
      try {
        changedLattice.emplace(latticeOf(sealed(changed(bytes, offset, other))));
      } catch (const CompiledFormError& error) {
        ++refused;
        ASSERT_THAT(error.what(), MatchesRegex("offset 0x[0-9A-F]+: .+"));
        continue;
      }
      ++read;
      ASSERT_LE(askAll(*changedLattice, kHistories).size(), kHistories.size() * 6 * 20);
    }
  }
  EXPECT_GT(refused, 500);
  EXPECT_GT(read, 100);  // counts, say
}

TEST(CompiledForm, AHostileWordIsRefusedOrDoesNoHarm) {
  tryEveryWord(small());
  tryEveryWord(smallAndWide());
}

// Counts that leave no fractions, in a lattice with enough items for candidates to be cut.
TEST(CompiledForm, HostileCountsDoNoHarm) {
  constexpr int kItems = 150;
  SequenceDictionary dictionary(smallTables(4));
  store(dictionary, {}, 500);
  for (int item = 1; item <= kItems; ++item) {
    store(dictionary, single(item), 300 + item);
    store(dictionary, {{1}, {item}}, 3 + item);
    store(dictionary, {{2}, {1}, {item}}, 2 + item % 7);
  }
  store(dictionary, {{2}, {1}}, 90);
  dictionary.buildLattice();
  const Bytes bytes = bytesOf(compile(dictionary));
  const Header header = headerOf(bytes);
  const Layout layout = layoutOf(header);
  constexpr std::int32_t kHostile[] = {0, -1, 1, std::numeric_limits<std::int32_t>::min(),
                                       std::numeric_limits<std::int32_t>::max()};
  const std::vector<History> histories = {{{1}}, {{2}, {1}}, {{2}, {1}, {7}}, {{2}, {1}, {1}}};
  std::size_t answers = 0;
  std::mt19937 random(1);
  for (int round = 0; round < 300; ++round) {
    Bytes other = bytes;
    const auto put = [&](std::size_t offset) {
      if (random() % 2 == 0) other = changed(other, offset, kHostile[random() % 5]);
    };
    for (std::size_t n = 0; n < header.nodes; ++n)
      if (n < 3 || n % 16 == 0) put(layout.nodes + n * sizeof(Node));
    for (std::size_t p = 0; p < header.proposals; p += 1 + random() % 8)
      put(layout.proposals + p * sizeof(Proposal) + offsetof(Proposal, count));
    put(offsetof(Header, customers));
    answers += askAll(latticeOf(sealed(other)), histories).size();
  }
  EXPECT_GT(answers, 1000U);
}

}  // namespace
