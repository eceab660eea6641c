// The bytes are a lattice in its binary form: read, asked, exported, written and read again.
//
// Refused, it is one promised line on standard error and an IOException by pointer, and the
// dictionary takes another file. Read, it can be written, and what is written is read as the same
// lattice.

#include <memory>
#include <sstream>
#include <string>

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

bool isRead(SequenceDictionary& dictionary, std::string_view bytes) {
  orbseq::test::MemoryFile<> file(bytes);
  const PrintedLines printed;
  try {
    dictionary.readObject(file.stream());
  } catch (SeqExceptions::IOException* raw) {
    const std::unique_ptr<SeqExceptions::IOException> refusal(raw);
    requireErrorText(refusal->what(), "offset 0x");
    require(printed.count() == 1, "a refusal does not print one line");
    return false;
  }
  require(printed.count() == 0, "what is read prints a line");
  return true;
}

// Whether the tables are small enough to be walked a few dozen times within the second that the
// fuzzer grants: a short file may name millions of buckets, all empty.
bool isSmall(const SequenceDictionary& dictionary) {
  constexpr std::int64_t kMostBuckets = 1 << 18;
  const auto& settings = dictionary.getSettings();
  std::int64_t buckets = std::int64_t{settings.upperTableSize} * settings.numLevels;
  for (const std::int32_t size : settings.levelTableSize) buckets += size;
  return buckets <= kMostBuckets;
}

// Planted: the last byte is lost.
std::string written(const SequenceDictionary& dictionary) {
  std::ostringstream out;
  dictionary.writeObject(out);
  std::string bytes = out.str();
  if (kPlanted) bytes.pop_back();
  return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  SequenceDictionary dictionary;
  if (!isRead(dictionary, textOf(data, size))) return 0;
  const AllAnswers answers = askBoth(dictionary);
  if (!isSmall(dictionary)) return 0;
  exportAll(dictionary);
  const std::string bytes = written(dictionary);
  SequenceDictionary again;
  require(isRead(again, bytes), "what was written is not read");
  require(askBoth(again) == answers, "what was written answers differently");
  require(isRead(dictionary, bytes), "a dictionary in use is not read into");
  require(askBoth(dictionary) == answers, "a dictionary that is read into answers differently");
  return 0;
}
