// What the tests of hostile documents share: one document given to a translator that has made a
// model before, under the meter.

#ifndef TESTS_HOSTILE_DOCUMENTS_H_
#define TESTS_HOSTILE_DOCUMENTS_H_

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "tests/contract/support.h"

namespace orbseq::test {

// The name under which every document is read.
inline constexpr const char* kDocumentName = "d.xml";

// What of a document is replaced by what: the first place, which must be there.
struct Edit {
  std::string find;
  std::string with;
};
std::string edited(std::string_view document, const std::vector<Edit>& edits);

// The small document of the contract tests (tests/contract/support.h) with the edits.
std::string smallDocument(const std::vector<Edit>& edits = {});

// Expects that the reader of documents refuses the bytes, under the meter, and gives the message.
std::string readerRefusal(std::string_view bytes);

// A row of a list: the small document with some edits is refused by the translator with exactly the
// message.
struct RefusedRow {
  const char* name;
  std::vector<Edit> edits;
  std::string message;
};
void PrintTo(const RefusedRow& row, std::ostream* os);

// How the message about a place begins: "lattice refused: SeqAssociationLattice/Item[2]/@id (line
// 8, column 1): ".
std::string at(const std::string& path, int line, int column = 1);

// Expects what the row says, and that no more than 1 MiB was allocated at once.
void expectRefused(const RefusedRow& row);

struct Refusal {
  std::string message;       // of the QuException out of ParseFromTree; empty: none came
  std::size_t largestBlock;  // bytes of the largest allocation on the way there
};

// Expects that the translator refuses the document: with a QuException on one line, traced as
// entered and not as left, under the meter, and with an earlier model of the same translator, and
// a later one, answering as ever.
Refusal translatorRefusal(const std::string& document, const std::string& encoding = "UTF-8");

// The same for a translator that is given no element at all.
Refusal refusalOfNoElement();

// Expects that the translator makes a model of the document, traced as entered and left, and that
// `use`, which must leave nothing allocated, and the model's end keep to the meter.
void expectModel(const std::string& document,
                 const std::function<void(const OrbScore::ScoreModel&)>& use);

// Expects that every answer of the model to every kind of question about the histories is finite
// and each item proposed once.
void expectSoundAnswers(const OrbScore::ScoreModel& model,
                        const std::vector<std::string>& histories);

// What a run of the program did, as the system saw it.
struct TracedRun {
  int status = -1;
  std::string output;
  std::string error;
  std::string calls;  // the system's calls that concern files and networks, a line each
};

// Whether system calls can be traced here at all.
bool canTrace();

// Runs the program with the arguments, each free of single quotes, in the folder. Requires
// canTrace().
TracedRun tracedRun(const std::string& folder, const std::vector<std::string>& arguments);

}  // namespace orbseq::test

#endif  // TESTS_HOSTILE_DOCUMENTS_H_
