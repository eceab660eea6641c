// A log of what customers took, read and ready for mining or scoring.
//
// Customers stand in the order in which the log names them first; their baskets in the order of
// time. Items are 32-bit numbers: the log's own where every item of it is an integer from 0 to
// 2147483647 without leading zeros, otherwise numbers from 1 in the order of the items' bytes, with
// the text as label.

#ifndef IO_TRANSACTIONLOG_H_
#define IO_TRANSACTIONLOG_H_

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "io/Model.h"
#include "mining/SequenceDatabase.h"

namespace orbseq {

// Item occurrences that name no item of a given model.
struct UnknownItems {
  static constexpr std::size_t kMostExamples = 3;

  std::size_t occurrences = 0;
  std::vector<std::string> examples;  // the first different texts

  void count(const std::string& text) {
    ++occurrences;
    if (examples.size() < kMostExamples &&
        std::find(examples.begin(), examples.end(), text) == examples.end())
      examples.push_back(text);
  }
  void add(const UnknownItems& others) {
    const std::size_t before = occurrences;
    for (const std::string& text : others.examples) count(text);
    occurrences = before + others.occurrences;
  }
};

struct TransactionLog {
  SequenceDatabase database;
  std::vector<std::string> customers;  // [database.customers()] as the log calls them
  ItemLabelMap labels;                 // the items' texts, and descriptions where there are any
  std::string textItem;                // the first item that made texts of all; empty: none did
  std::size_t rows = 0;                // rows, lines or objects that were read
  std::size_t badRows = 0;             // of them, those that were skipped
  UnknownItems unknown;                // where items were looked up
};

}  // namespace orbseq

#endif  // IO_TRANSACTIONLOG_H_
