// A miner by definition: every sequence that a customer holds, counted customer by customer.

#ifndef TESTS_MINING_NAIVEMINER_H_
#define TESTS_MINING_NAIVEMINER_H_

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "mining/MinerOptions.h"
#include "mining/PatternTree.h"
#include "mining/SequenceDatabase.h"

namespace orbseq::test {

using Items = std::vector<std::int32_t>;
struct Basket {
  double time;
  Items items;
};
using Customer = std::vector<Basket>;

SequenceDatabase databaseOf(const std::vector<Customer>& customers);

// Customers by sequence, written "1 2|3".
using Supports = std::map<std::string, std::int32_t>;
Supports naivelyMined(const std::vector<Customer>& customers, const MinerOptions& options);
// The same of a result; a sequence that comes twice counts -1.
Supports supportsOf(const PatternTree& tree);

// Seeded customers: `most` baskets of up to `width` of the items 1 .. items, times in steps of
// 0..3.
std::vector<Customer> randomCustomers(std::uint32_t seed, int customers, int items, int most,
                                      int width);

}  // namespace orbseq::test

#endif  // TESTS_MINING_NAIVEMINER_H_
