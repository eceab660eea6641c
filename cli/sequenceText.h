// Sequences as lines of text.
//
// The common form has the items of a set separated by blanks and -1 behind each set: "1 2 -1 3 -1".
// A part of a rule has -1 between its sets alone: "1 2 -1 3". With labels, an item's label stands
// for its number, in double quotes (a quote doubled) where it is empty or a number, begins with -,
// # or =, or holds a blank, a quote or a control character; an item without a label keeps its
// number.

#ifndef CLI_SEQUENCETEXT_H_
#define CLI_SEQUENCETEXT_H_

#include <string>

#include "io/Model.h"

namespace SEQUENCE_NAMESPACE_800 {
class Sequence;
}

namespace orbseq {

// `labels` null: numbers.
void appendSets(std::string& out, const SEQUENCE_NAMESPACE_800::Sequence& sequence,
                const ItemLabelMap* labels, bool closesLastSet);

// For people: "(a, b)(c)" by label, one-item sets of one-set sequences without parentheses.
std::string readableSets(const SEQUENCE_NAMESPACE_800::Sequence& sequence,
                         const ItemLabelMap& labels);

// For programs: "(1 2)(3)", as histories are written.
std::string historyText(const SEQUENCE_NAMESPACE_800::Sequence& sequence);

}  // namespace orbseq

#endif  // CLI_SEQUENCETEXT_H_
