// The bytes are a customer's history as text: read, compared with a plain second reading, and asked
// of a small lattice in two ways.
//
// Nothing is refused, so nothing is caught. What the strict reader of logs takes, it takes alike.

#include <cstdint>
#include <iterator>
#include <set>
#include <string_view>
#include <vector>

#include "engine/Recommender.h"
#include "engine/caseText.h"
#include "engine/compile.h"
#include "fuzz/Choice.h"
#include "fuzz/answers.h"
#include "fuzz/check.h"
#include "fuzz/threeWays.h"
#include "io/historyText.h"
#include "tests/support/World.h"

namespace {

using namespace orbseq::fuzz;
using orbseq::test::Items;
using Sets = orbseq::test::History;

// A byte at a time, without looking ahead. Planted: a minus sign is taken for an item's.
class PlainReading {
 public:
  explicit PlainReading(std::string_view text) {
    for (const char c : text) take(c);
    if (isInSet_) endSet();
  }

  const Sets& sets() const noexcept { return sets_; }

 private:
  void take(char c) {
    if (!isInSet_) {
      isInSet_ = c == '(';
    } else if (isInStamp_) {
      isInStamp_ = c != ']';
    } else if (c >= '0' && c <= '9') {
      number_ = number_ * 10 + static_cast<std::uint32_t>(c - '0');
      isInNumber_ = true;
    } else {
      endNumber();
      isInStamp_ = c == '[';
      isNegative_ = kPlanted && c == '-';
      if (c == ')') endSet();
    }
  }

  void endNumber() {
    if (isInNumber_) items_.insert(static_cast<std::int32_t>(isNegative_ ? 0U - number_ : number_));
    number_ = 0;
    isInNumber_ = false;
  }

  void endSet() {
    endNumber();
    sets_.emplace_back(items_.begin(), items_.end());
    items_.clear();
    isInSet_ = false;
    isInStamp_ = false;
  }

  Sets sets_;
  std::set<std::int32_t> items_;
  std::uint32_t number_ = 0;
  bool isInSet_ = false;
  bool isInStamp_ = false;
  bool isInNumber_ = false;
  bool isNegative_ = false;
};

Sets setsOf(const orbseq::engine::History& history) {
  Sets sets;
  for (std::size_t k = 0; k < history.sets(); ++k)
    sets.emplace_back(history.set(k).begin(), history.set(k).end());
  return sets;
}

void requireAscending(const Sets& sets) {
  for (const Items& set : sets)
    for (std::size_t k = 1; k < set.size(); ++k)
      require(set[k - 1] < set[k], "the items of a set do not ascend");
}

void compareWithStrictReading(std::string_view text, const Sets& sets) {
  std::vector<orbseq::HistorySet> strict;
  try {
    strict = orbseq::parseHistory(text);
  } catch (const orbseq::HistoryTextError& refusal) {
    requireErrorText(refusal.what(), "byte ");
    return;
  }
  require(strict.size() == sets.size(), "the strict reading has other sets");
  for (std::size_t k = 0; k < sets.size(); ++k) {
    const std::set<std::int32_t> items(strict[k].items.begin(), strict[k].items.end());
    require(Items(items.begin(), items.end()) == sets[k], "the strict reading has other items");
  }
}

struct Model {
  orbseq::test::Lattice dictionary{{{"", 100},
                                    {"(1)", 80},
                                    {"(2)", 50},
                                    {"(3)", 40},
                                    {"(1 2)", 40},
                                    {"(1)(2)", 30},
                                    {"(2)(2)", 20},
                                    {"(2)(3)", 20},
                                    {"(1 2)(2)", 15},
                                    {"(1)(1 2)", 10}}};
  orbseq::engine::CompiledLattice compiled = orbseq::engine::compile(dictionary);
  orbseq::engine::Recommender recommender{compiled};
  orbseq::engine::Workspace workspace;
};

// In one of three ways.
void ask(const orbseq::engine::History& history, const Sets& sets, Choice choice) {
  using namespace orbseq::test;
  static Model model;
  const Pick way = choice.among(3);
  const auto check = [](const char*, const Answers& answers, const std::vector<Advice>& same) {
    requireSound(answers, 20);
    require(adviceOf(answers) == same, "the dictionary answers differently");
  };
  orbseq::fuzz::askInWays(way, model.recommender, model.workspace, history, model.dictionary, sets,
                          20, check);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = textOf(data, size);
  orbseq::engine::History history;
  orbseq::engine::appendCaseText(text, history);
  const Sets sets = setsOf(history);
  requireAscending(sets);
  require(sets == PlainReading(text).sets(), "the plain reading has other sets");
  compareWithStrictReading(text, sets);
  ask(history, sets, Choice(data, size));
  return 0;
}
