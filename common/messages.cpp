#include "common/messages.h"

#include <iostream>

namespace orbseq {

const char* textOf(Message message) noexcept {
  switch (message) {
    case Message::kReadingDictionary:
      return "Error reading SequenceDictionary!\n";
    case Message::kReadingSettings:
      return "Error reading SeqDictionarySettings!\n";
    case Message::kReadingTable:
      return "Error reading HashtableSQPair!\n";
    case Message::kReadingSequence:
      return "Failure reading NTSequence!\n";
    case Message::kReadingCounter:
      return "Error reading SequenceCounter!\n";
    case Message::kReadingAdjacency:
      return "Error reading Sequence!\n";
    case Message::kReadingStatistics:
      return "Error reading StatsBucket!\n";
    case Message::kSavingDictionary:
      return "Bad stream for saving SequenceDictionary!\n";
    case Message::kSavingDictionaryXml:
      return "Bad stream for saving SequenceDictionary to XML!\n";
  }
  return "";
}

namespace {

// The slot in which each stream keeps whether it is silenced.
int silencedSlot() {
  static const int slot = std::ios_base::xalloc();
  return slot;
}

}  // namespace

void silence(std::ios_base& stream) { stream.iword(silencedSlot()) = 1; }

void print(Message message, std::ios_base& stream) {
  if (stream.iword(silencedSlot()) != 0) return;
  const bool saving =
      message == Message::kSavingDictionary || message == Message::kSavingDictionaryXml;
  (saving ? std::cout : std::cerr) << textOf(message) << std::flush;
}

}  // namespace orbseq
