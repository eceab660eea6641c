// The bytes are a lattice in its binary form: read, then asked, exported, or written and read
// again, as the choice tells.
//
// Refused, it is one promised line on standard error and an IOException by pointer, and the
// dictionary takes another file. Read, it can be written, and what is written is read as the same
// lattice.

#include <cstddef>
#include <cstdint>
#include <cstring>
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

// How many buckets the file's head asks for; 0 for a file that has no head or asks for more than
// any may have, which is refused before a table is made.
std::int64_t bucketsOf(std::string_view bytes) {
  constexpr std::size_t kHead = 5, kNamed = 8;  // markers and flag; levels with a size of their own
  std::int32_t sizes[kNamed + 2];               // those, how many levels, that of the others
  if (bytes.size() < kHead + sizeof sizes) return 0;
  std::memcpy(sizes, bytes.data() + kHead, sizeof sizes);
  const std::int32_t levels = sizes[kNamed];
  if (levels < 1 || levels > orbseq::LatticeLimits::kLevels) return 0;
  std::int64_t buckets = 0;
  for (std::size_t level = 0; level < static_cast<std::size_t>(levels); ++level) {
    const std::int32_t size = sizes[level < kNamed ? level : kNamed + 1];
    if (size < 1) return 0;
    buckets += size;
  }
  return buckets <= orbseq::LatticeLimits::kBuckets ? buckets : 0;
}

// Whether an execution has the time. Empty buckets show little, and a file of a hundred bytes can
// ask for millions: the more, the fewer of such files are read, a thousand buckets an execution on
// average.
bool isWorthReading(std::string_view bytes, Choice& choice) {
  constexpr std::int64_t kBuckets = 1024;
  return choice.among(static_cast<std::uint64_t>(bucketsOf(bytes) / kBuckets + 1)).is(0);
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
  Choice choice(data, size);
  const std::string_view given = textOf(data, size);
  SequenceDictionary dictionary;
  if (!isWorthReading(given, choice) || !isRead(dictionary, given)) return 0;
  const Pick work = choice.among(4);
  if (work.is(0)) askBoth(dictionary, choice);
  if (!isSmall(dictionary)) return 0;
  if (work.is(1)) exportSome(dictionary, choice);
  if (!work.is(2) && !work.is(3)) return 0;
  const AllAnswers answers = askBoth(dictionary, choice);
  const std::string bytes = written(dictionary);
  if (work.is(2)) {
    SequenceDictionary again;
    require(isRead(again, bytes), "what was written is not read");
    require(askBoth(again, choice) == answers, "what was written answers differently");
  }
  if (work.is(3)) {
    require(isRead(dictionary, bytes), "a dictionary in use is not read into");
    require(askBoth(dictionary, choice) == answers,
            "a dictionary that is read into answers differently");
  }
  return 0;
}
