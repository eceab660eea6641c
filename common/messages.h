// The one-line messages that the readers and writers of stored forms promise, and the only place
// that prints them.
//
// Threads: any; a line is written as one piece.

#ifndef COMMON_MESSAGES_H_
#define COMMON_MESSAGES_H_

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

void print(Message message);

}  // namespace orbseq

#endif  // COMMON_MESSAGES_H_
