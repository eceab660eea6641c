// A customer's answer as the scoring module ranks it, best first.

#ifndef CLI_ANSWERS_H_
#define CLI_ANSWERS_H_

#include <span>

#include "sequence/SeqConsequentDescriptor.h"

namespace orbseq {

using Answers = std::span<const SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor>;

}  // namespace orbseq

#endif  // CLI_ANSWERS_H_
