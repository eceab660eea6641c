// The one-line messages that the readers and writers of stored forms promise, and the only place
// that prints them.
//
// Whoever tells its own user what went wrong silences the stream first: then nothing is printed for
// it, and the exception or the answer 0 is all there is.
//
// Threads: any; a line is written as one piece. A stream is for one thread at a time.

#ifndef COMMON_MESSAGES_H_
#define COMMON_MESSAGES_H_

#include <iosfwd>

namespace orbseq {

enum class Message {
  // On standard error.
  kReadingDictionary,
  kReadingSettings,
  kReadingTable,
  kReadingSequence,
  kReadingCounter,
  kReadingAdjacency,
  kReadingStatistics,
  // On standard output.
  kSavingDictionary,
  kSavingDictionaryXml,
};

const char* textOf(Message message) noexcept;  // with its line feed

// Prints the message that belongs to a failure of `stream`, unless the stream is silenced.
void print(Message message, std::ios_base& stream);

void silence(std::ios_base& stream);

}  // namespace orbseq

#endif  // COMMON_MESSAGES_H_
