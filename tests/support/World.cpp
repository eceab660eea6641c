#include "tests/support/World.h"

#include <algorithm>
#include <iomanip>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include "sequence/HashtableSQPair.h"

namespace orbseq::test {

using SEQUENCE_NAMESPACE_800::HashtableSQPair;

// --- Forms ---------------------------------------------------------------------------------------

History history(std::string_view text) {
  History sets;
  std::istringstream in{std::string(text)};
  for (char sign = 0; in >> sign;) {
    if (sign == '(') {
      sets.emplace_back();
    } else if (sign != ')') {
      in.putback(sign);
      int item = 0;
      if (sets.empty() || !(in >> item)) throw std::invalid_argument(std::string(text));
      sets.back().push_back(item);
    }
  }
  return sets;
}

std::string text(const std::vector<History>& sequences) {
  std::string all;
  for (const History& sequence : sequences) all += (all.empty() ? "" : ", ") + text(sequence);
  return "[" + all + "]";
}

Sequence sequence(std::string_view text) { return sequence(history(text)); }

NTSequence packed(std::string_view text) { return packed(history(text)); }

History normalised(const History& sequence) {
  History sets;
  for (const Items& set : sequence) {
    const std::set<int> items(set.begin(), set.end());
    sets.emplace_back(items.begin(), items.end());
  }
  return sets;
}

int itemCount(const History& sequence) {
  std::size_t items = 0;
  for (const Items& set : sequence) items += set.size();
  return static_cast<int>(items);
}

History single(int item) { return History{Items{item}}; }

// --- Answers -------------------------------------------------------------------------------------

std::ostream& operator<<(std::ostream& out, const Advice& advice) {
  return out << std::setprecision(17) << advice.item << " confidence " << advice.confidence
             << " support " << advice.support << " cause " << advice.cause;
}

std::ostream& operator<<(std::ostream& out, const Rule& rule) {
  return out << std::setprecision(17) << text(rule.antecedent) << " => " << text(rule.consequent)
             << " support " << rule.support << " confidence " << rule.confidence << " cause "
             << rule.cause << " type " << rule.joinType;
}

std::vector<Advice> adviceOf(const std::vector<SeqConsequentDescriptor>& answer) {
  std::vector<Advice> all;
  for (const SeqConsequentDescriptor& one : answer)
    all.push_back({one.GetItem(), one.GetConfidence(), one.GetSupport(), one.GetCause()});
  return all;
}

std::vector<Rule> rulesOf(const std::vector<SeqAssociationRule>& answer) {
  std::vector<Rule> all;
  for (const SeqAssociationRule& one : answer)
    all.push_back({setsOf(one.GetAntecedent()), setsOf(one.GetConsequent()), one.GetSupport(),
                   one.GetConfidence(), one.GetCause(), one.GetJoinType()});
  return all;
}

namespace {

void requireOk(const OrbCommon_830::OrbStatus& status) {
  if (!status.IsOK())
    throw std::runtime_error("error status " + std::to_string(status.GetErrorCode()));
}

// Takes over what a call handed out by owning pointers.
template <typename Pointers>
std::vector<History> takeOver(const Pointers& pointers) {
  std::vector<History> all;
  for (auto* sequence : pointers) {
    all.push_back(setsOf(*sequence));
    delete sequence;
  }
  return all;
}

}  // namespace

std::vector<History> found(const SequenceDictionary& dictionary, const History& customer,
                           int skipLast) {
  const Sequence asked = sequence(customer);
  std::vector<NTSequence*> answer;
  requireOk(dictionary.getSubsequencesInSequence(answer, &asked, skipLast));
  return takeOver(answer);
}

std::vector<History> sequencesOfSize(const SequenceDictionary& dictionary, int size,
                                     bool maximalOnly) {
  std::vector<const Sequence*> answer;
  requireOk(dictionary.getSequencesOfSize(answer, size, maximalOnly));
  return takeOver(answer);
}

std::vector<Advice> futureItems(const SequenceDictionary& dictionary, const History& customer,
                                int maxCount, bool wholeOnly) {
  const Sequence asked = sequence(customer);
  std::vector<SeqConsequentDescriptor> answer;
  requireOk(dictionary.GetFutureItems(answer, &asked, maxCount, wholeOnly));
  return adviceOf(answer);
}

std::vector<Advice> currentItems(const SequenceDictionary& dictionary, const History& customer,
                                 int maxCount) {
  const Sequence asked = sequence(customer);
  std::vector<SeqConsequentDescriptor> answer;
  requireOk(dictionary.GetCurrentItems(answer, &asked, maxCount));
  return adviceOf(answer);
}

std::vector<Rule> rules(const SequenceDictionary& dictionary, const RuleQuery& query) {
  std::vector<SeqAssociationRule> answer;
  requireOk(dictionary.GetRules(answer, query.minSupport, query.maxSupport, query.minConfidence,
                                query.maxConfidence, query.minCause, query.maxCause, query.sortBy,
                                query.maximalOnly));
  return rulesOf(answer);
}

std::vector<History> reached(const SequenceDictionary& dictionary, Walk walk, const History& start,
                             int minCount, int maxCount) {
  const Sequence asked = sequence(start);
  std::set<Sequence*> answer;
  switch (walk) {
    case Walk::kAnywhere:
      requireOk(dictionary.FindSequences(&asked, answer, minCount, maxCount));
      break;
    case Walk::kBeginning:
      requireOk(dictionary.FindSequencesBeginning(&asked, answer, minCount, maxCount));
      break;
    case Walk::kEnding:
      requireOk(dictionary.FindSequencesEnding(&asked, answer, minCount, maxCount));
      break;
  }
  std::vector<History> all = takeOver(answer);
  std::sort(all.begin(), all.end());
  return all;
}

std::optional<Links> linksOf(const SequenceDictionary& dictionary, const History& sequence) {
  const NTSequence key = packed(sequence);
  const SequenceCounter* counter = dictionary.getDescriptor(&key);
  if (counter == nullptr || counter->getAdjacentItems() == nullptr) return std::nullopt;
  return Links(counter->getAdjacentItems()->begin(), counter->getAdjacentItems()->end());
}

// --- Lattices ------------------------------------------------------------------------------------

namespace {

using Generator = std::mt19937;

int below(Generator& random, int bound) {
  return static_cast<int>(random() % static_cast<unsigned>(bound));
}

bool chance(Generator& random, int percent) { return below(random, 100) < percent; }

// At most `room` items in one or more baskets.
History randomCustomer(Generator& random, int items, int room) {
  History customer;
  while (room > 0 && (customer.empty() || chance(random, 90))) {
    Items basket;
    const int size = std::min(room, 1 + below(random, 3));
    for (int i = 0; i < size; ++i) basket.push_back(1 + below(random, items));
    customer.push_back(basket);
    room -= size;
  }
  return normalised(customer);
}

// Every sequence that the customer contains: each choice of items, basket by basket.
std::set<History> subsequences(const History& customer) {
  std::set<History> all = {History()};
  for (const Items& basket : customer) {
    const std::set<History> shorter = all;
    for (unsigned chosen = 1; chosen < 1U << basket.size(); ++chosen) {
      Items part;
      for (std::size_t i = 0; i < basket.size(); ++i)
        if ((chosen >> i & 1U) != 0) part.push_back(basket[i]);
      for (History sequence : shorter) {
        sequence.push_back(part);
        all.insert(std::move(sequence));
      }
    }
  }
  return all;
}

// The first set of two and more items in descending order.
History withUnsortedSet(History sequence) {
  const auto large = std::find_if(sequence.begin(), sequence.end(),
                                  [](const Items& set) { return set.size() > 1; });
  if (large != sequence.end()) std::reverse(large->begin(), large->end());
  return sequence;
}

Links randomLinks(Generator& random, const History& sequence, int items) {
  Links links;
  const int sets = static_cast<int>(sequence.size());
  for (int n = below(random, 5); n > 0; --n) {
    const int item = 1 + below(random, items);
    const int position = sets == 0 ? 1 : below(random, 2 * sets + 2);
    links.emplace(item, position == 2 * sets ? 0 : position);  // there is no set to join there
  }
  return links;
}

std::map<History, Entry> randomEntries(Generator& random, const WorldOptions& options,
                                       const std::vector<History>& customers) {
  std::map<History, int> counts;
  for (const History& customer : customers)
    for (const History& sequence : subsequences(customer)) ++counts[sequence];
  counts.erase(History());

  std::map<History, Entry> entries;
  for (const auto& [sequence, count] : counts) {
    if (count < options.atLeast || itemCount(sequence) >= options.levels) continue;
    if (chance(random, options.leftOut)) continue;
    const bool turned = chance(random, options.unsorted);
    Entry entry{count, {}};
    if (chance(random, options.withoutCount)) entry.count.reset();
    if (entry.count && chance(random, options.zeroCount)) entry.count = 0;
    entries.emplace(turned ? withUnsortedSet(sequence) : sequence, entry);
  }
  using Customers = WorldOptions::Customers;
  if (options.level0 != Customers::kMissing && options.levels > 0) {
    Entry& empty = entries[History()];
    if (options.level0 != Customers::kNoCounter) empty.count = 0;
    if (options.level0 == Customers::kCounted) empty.count = options.customers;
  }
  if (options.randomLinks)
    for (auto& [sequence, entry] : entries)
      if (entry.count) entry.links = randomLinks(random, sequence, options.items);
  return entries;
}

// A customer's history with some of it exchanged, or wholly made up.
History randomHistory(Generator& random, const WorldOptions& options,
                      const std::vector<History>& customers) {
  History sets;
  if (!customers.empty() && chance(random, 60))
    sets = customers[static_cast<std::size_t>(below(random, static_cast<int>(customers.size())))];
  for (int n = below(random, sets.empty() ? 5 : 3); n > 0; --n) {
    Items set;
    for (int i = below(random, 4); i > 0; --i)
      set.push_back(1 + below(random, options.items + 2));  // two of them unknown
    sets.insert(sets.begin() + below(random, static_cast<int>(sets.size()) + 1), set);
  }
  return sets;
}

// Without the empty sequence only where that is asked for.
SequenceDictionary emptyDictionary(const WorldOptions& options) {
  if (options.level0 != WorldOptions::Customers::kMissing)
    return SequenceDictionary(smallTables(options.levels));
  const int levels = std::max(options.levels, 0);
  auto tables = std::make_unique<HashtableSQPair*[]>(static_cast<std::size_t>(levels));
  for (int level = 0; level < levels; ++level)
    tables[static_cast<std::size_t>(level)] = new HashtableSQPair(3 + level);
  return SequenceDictionary(tables.release(), options.levels);
}

}  // namespace

bool store(SequenceDictionary& dictionary, const History& sequence, std::optional<int> count) {
  const CountedArrays arrays(sequence);
  const SequenceCounter counter(0, count.value_or(0), nullptr);
  return dictionary.addSequence(arrays.data(), arrays.count(), count ? &counter : nullptr);
}

SeqDictionarySettings smallTables(int levels) {
  SeqDictionarySettings settings;
  settings.levelTableSize = {2, 3, 5, 7, 7, 5, 3, 3};
  settings.upperTableSize = 3;
  settings.numLevels = levels;
  return settings;
}

Lattice::Lattice(const std::vector<Count>& counts, int levels)
    : SequenceDictionary(smallTables(levels)) {
  for (const Count& count : counts) store(*this, history(count.sequence), count.count);
  buildLattice();
}

World::World(const WorldOptions& given) : options(given), dictionary(emptyDictionary(given)) {
  Generator random(options.seed);
  std::vector<History> customers;
  for (int n = 0; n < options.customers; ++n)
    customers.push_back(randomCustomer(random, options.items, options.itemsACustomer));
  entries = randomEntries(random, options, customers);
  for (int n = 0; n < options.histories; ++n)
    histories.push_back(randomHistory(random, options, customers));

  std::vector<const std::pair<const History, Entry>*> order;  // of entry, by chance as well
  for (const auto& entry : entries) order.push_back(&entry);
  for (std::size_t n = order.size(); n > 1; --n) std::swap(order[n - 1], order[random() % n]);
  for (const auto* entry : order) store(dictionary, entry->first, entry->second.count);

  if (!options.randomLinks) {
    dictionary.buildLattice();
    return;
  }
  for (const auto& [sequence, entry] : entries) {
    if (!entry.links) continue;
    const NTSequence key = packed(sequence);
    for (const auto& [item, position] : *entry.links)
      dictionary.getDescriptor(&key)->addAdjacentItem(item, position);
  }
}

World randomWorld(std::uint32_t seed) {
  Generator random(seed * 2654435761U + 1);
  WorldOptions options;
  options.seed = seed;
  options.items = 2 + below(random, 3);
  options.customers = 4 + below(random, 12);
  options.itemsACustomer = 5 + below(random, 4);
  options.atLeast = chance(random, 20) ? 1 : 2 + below(random, 2);
  options.levels = chance(random, 15) ? 1 + below(random, 4) : 5 + below(random, 6);
  if (seed % 3 == 0) return World(options);

  options.leftOut = chance(random, 50) ? below(random, 40) : 0;
  options.withoutCount = chance(random, 50) ? below(random, 30) : 0;
  options.zeroCount = chance(random, 50) ? below(random, 30) : 0;
  options.unsorted = chance(random, 25) ? below(random, 40) : 0;
  options.randomLinks = chance(random, 25);
  using Customers = WorldOptions::Customers;
  constexpr Customers kinds[] = {Customers::kCounted, Customers::kCounted, Customers::kCounted,
                                 Customers::kCounted, Customers::kZero,    Customers::kNoCounter,
                                 Customers::kMissing};
  options.level0 = kinds[below(random, static_cast<int>(std::size(kinds)))];
  return World(options);
}

bool lacksCounters(const World& world) {
  return std::any_of(world.entries.begin(), world.entries.end(),
                     [](const auto& entry) { return !entry.second.count; });
}

}  // namespace orbseq::test
