// Seeded lattices for tests: random customers, their frequent sequences, a dictionary that holds
// them, and histories to ask about. Beside it the small forms that tests write sequences in.
//
// Shape. A History is a list of item sets; the text "(1 2)(3)" is its usual notation, "" is the
// history without sets and "()" one empty set. A World keeps the dictionary and, in plain
// containers, exactly what was put into it.
//
// Determinism. A world depends on its options alone, on every machine: the generator is
// std::mt19937 with plain remainders.

#ifndef TESTS_SUPPORT_WORLD_H_
#define TESTS_SUPPORT_WORLD_H_

#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lattice/SequenceDictionary.h"
#include "sequence/SeqAssociationRule.h"
#include "sequence/SeqConsequentDescriptor.h"
#include "sequence/SequenceCounter.h"
#include "tests/support/sequenceValues.h"

namespace orbseq::test {

using SEQUENCE_NAMESPACE_800::SeqAssociationRule;
using SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor;
using SEQUENCE_NAMESPACE_800::SeqDictionarySettings;
using SEQUENCE_NAMESPACE_800::SequenceCounter;
using SEQUENCE_NAMESPACE_800::SequenceDictionary;

using History = ItemSets;                     // item sets, oldest first
using Links = std::set<std::pair<int, int>>;  // (item, position)

// --- Forms ---------------------------------------------------------------------------------------

History history(std::string_view text);  // "(1 2)(3)"
std::string text(const std::vector<History>& sequences);
Sequence sequence(std::string_view text);
NTSequence packed(std::string_view text);
History normalised(const History& sequence);  // each set ascending, without duplicates
int itemCount(const History& sequence);
History single(int item);  // (item)

// --- Answers -------------------------------------------------------------------------------------

struct Advice {
  int item;
  double confidence;
  double support;
  double cause;

  friend bool operator==(const Advice&, const Advice&) = default;  // bit for bit, bar -0.0
};

struct Rule {
  History antecedent;
  History consequent;
  double support;
  double confidence;
  double cause;
  int joinType;

  friend bool operator==(const Rule&, const Rule&) = default;
};

std::ostream& operator<<(std::ostream& out, const Advice& advice);
std::ostream& operator<<(std::ostream& out, const Rule& rule);

std::vector<Advice> adviceOf(const std::vector<SeqConsequentDescriptor>& answer);
std::vector<Rule> rulesOf(const std::vector<SeqAssociationRule>& answer);

struct RuleQuery {
  double minSupport = 0.0;
  double maxSupport = 1.0;
  double minConfidence = 0.0;
  double maxConfidence = std::numeric_limits<double>::infinity();
  double minCause = 0.0;
  double maxCause = std::numeric_limits<double>::infinity();
  char sortBy = ' ';
  bool maximalOnly = false;
};

// The dictionary's answers as values; each of the calls must answer OK, else they throw
// std::runtime_error. What the dictionary handed over is freed.
std::vector<History> found(const SequenceDictionary& dictionary, const History& customer,
                           int skipLast = 0);
std::vector<History> sequencesOfSize(const SequenceDictionary& dictionary, int size,
                                     bool maximalOnly = false);
std::vector<Advice> futureItems(const SequenceDictionary& dictionary, const History& customer,
                                int maxCount = 20, bool wholeOnly = true);
std::vector<Advice> currentItems(const SequenceDictionary& dictionary, const History& customer,
                                 int maxCount = 20);
std::vector<Rule> rules(const SequenceDictionary& dictionary, const RuleQuery& query = {});

enum class Walk { kAnywhere, kBeginning, kEnding };
// In the order of the sequences' texts, not of their addresses; a sequence reported twice stands
// twice.
std::vector<History> reached(const SequenceDictionary& dictionary, Walk walk, const History& start,
                             int minCount, int maxCount);

// The pairs on a stored sequence's counter; none at all when there is no counter or no set.
std::optional<Links> linksOf(const SequenceDictionary& dictionary, const History& sequence);

// --- Lattices ------------------------------------------------------------------------------------

// What a table holds of a sequence.
struct Entry {
  std::optional<int> count;    // absent: a null counter
  std::optional<Links> links;  // absent: no adjacency set
};

// Stores a sequence; no count stores a null counter. False when no level can hold it.
bool store(SequenceDictionary& dictionary, const History& sequence, std::optional<int> count);

struct Count {
  std::string_view sequence;
  std::optional<int> count;
};
// Settings with small tables, so that a test may make many dictionaries.
SeqDictionarySettings smallTables(int levels);
// A linked dictionary of the listed sequences; "" sets the number of customers.
class Lattice final : public SequenceDictionary {
 public:
  explicit Lattice(const std::vector<Count>& counts, int levels = 6);
};

struct WorldOptions {
  enum class Customers { kCounted, kZero, kNoCounter, kMissing };

  std::uint32_t seed = 1;
  int items = 3;           // known items are 1 .. items
  int customers = 8;       // whose sequences are counted
  int itemsACustomer = 6;  // at most; 2 to this power sequences each
  int atLeast = 2;         // customers that a stored sequence has
  int levels = 7;
  int leftOut = 0;       // per cent of the sequences that are not stored
  int withoutCount = 0;  // per cent that get a null counter
  int zeroCount = 0;     // per cent that get the count 0
  int unsorted = 0;      // per cent whose first large set is stored in descending order
  Customers level0 = Customers::kCounted;
  bool randomLinks = false;  // pairs by chance instead of buildLattice
  int histories = 6;
};

class World {
 public:
  explicit World(const WorldOptions& options);
  World(const World&) = delete;
  World& operator=(const World&) = delete;

  WorldOptions options;
  std::map<History, Entry> entries;  // links are absent unless they are random
  std::vector<History> histories;    // with empty sets, unknown items and repetitions
  SequenceDictionary dictionary;
};

// Whether an entry has no counter. Stored, it comes back with one of zeros, which is another
// lattice.
bool lacksCounters(const World& world);

// A world whose options are drawn from the seed as well: a third of them closed and well-formed,
// the others with everything that a lattice may lack.
World randomWorld(std::uint32_t seed);

}  // namespace orbseq::test

#endif  // TESTS_SUPPORT_WORLD_H_
