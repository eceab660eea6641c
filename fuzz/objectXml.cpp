// The bytes are a lattice as objects in lines of XML: read, then asked, exported, or written and
// read again, as the choice tells.
//
// Refused, the answer is 0 or an IOException by pointer, and at most one line is printed. What is
// written, the levels up to the first empty one, is read again.

#include <memory>
#include <sstream>
#include <string>

#include "fuzz/Choice.h"
#include "fuzz/PrintedLines.h"
#include "fuzz/check.h"
#include "fuzz/latticeQuestions.h"
#include "lattice/SequenceDictionary.h"
#include "sequence/SeqExceptions.h"
#include "tests/hostile/MemoryFile.h"

namespace {

using namespace orbseq::fuzz;
using SEQUENCE_NAMESPACE_800::SeqExceptions;
using SEQUENCE_NAMESPACE_800::SequenceDictionary;

bool isRead(SequenceDictionary& dictionary, std::string_view text) {
  orbseq::test::MemoryFile<> file(text);
  const PrintedLines printed;
  std::uint64_t lines = 0;
  try {
    lines = dictionary.readObjectXML(file.stream());
  } catch (SeqExceptions::IOException* raw) {
    const std::unique_ptr<SeqExceptions::IOException> refusal(raw);
    requireErrorText(refusal->what(), "");
  }
  require(printed.count() <= (lines == 0 ? 1 : 0), "more lines are printed than are promised");
  return lines != 0;
}

// Planted: the end of the object is lost.
std::string written(const SequenceDictionary& dictionary) {
  std::ostringstream out;
  dictionary.writeObjectXML(out);
  std::string text = out.str();
  if (kPlanted) text.resize(text.rfind("</Obj>"));
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  SequenceDictionary dictionary;
  if (!isRead(dictionary, textOf(data, size))) return 0;
  Choice choice(data, size);
  const Pick work = choice.among(3);
  if (work.is(0)) askBoth(dictionary, choice);
  if (work.is(1)) exportSome(dictionary, choice);
  if (!work.is(2)) return 0;
  SequenceDictionary second;
  require(isRead(second, written(dictionary)), "what was written is not read");
  const AllAnswers answers = askBoth(second, choice);
  require(isRead(dictionary, written(second)), "a dictionary in use is not read into");
  require(askBoth(dictionary, choice) == answers, "what was written answers differently");
  return 0;
}
