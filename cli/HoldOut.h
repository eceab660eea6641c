// A log in two parts: what a model may see, and what it is then asked for.
//
// Either each customer's last basket is held back, or every basket of the last share of the log's
// time. Asked for is a customer who has baskets in both parts. A customer whose only basket would
// be held back as the last one stays in the first part and is not asked for; one who came first in
// the last share of time is in neither part.

#ifndef CLI_HOLDOUT_H_
#define CLI_HOLDOUT_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "mining/SequenceDatabase.h"
#include "sequence/Sequence.h"

namespace orbseq {

struct HeldOut {
  std::size_t customer = 0;          // of the whole log
  std::size_t firstSet = 0;          // of the history, in the whole log
  std::size_t lastSet = 0;           // one past it
  std::vector<std::int32_t> wanted;  // items held back, ascending without duplicates
};

struct HoldOut {
  SequenceDatabase seen;
  std::vector<HeldOut> cases;
};

// "last": 0.0; a share above 0 and below 1 as text: that share; nothing for any other text.
std::optional<double> holdBackOf(const std::string& text);

// `share` 0: the last basket of each customer.
HoldOut holdOut(const SequenceDatabase& log, double share);

}  // namespace orbseq

#endif  // CLI_HOLDOUT_H_
