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

void print(Message message) {
  const bool saving =
      message == Message::kSavingDictionary || message == Message::kSavingDictionaryXml;
  (saving ? std::cout : std::cerr) << textOf(message) << std::flush;
}

}  // namespace orbseq
