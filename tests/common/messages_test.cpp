#include "common/messages.h"

#include <gtest/gtest.h>

#include <ios>
#include <iostream>
#include <sstream>
#include <streambuf>
#include <string>
#include <utility>

namespace {

using orbseq::Message;

// What a message on a stream writes to standard output and to standard error.
std::pair<std::string, std::string> printed(Message message, std::ios_base& stream) {
  std::ostringstream out, error;
  std::streambuf* const previousOut = std::cout.rdbuf(out.rdbuf());
  std::streambuf* const previousError = std::cerr.rdbuf(error.rdbuf());
  orbseq::print(message, stream);
  std::cout.rdbuf(previousOut);
  std::cerr.rdbuf(previousError);
  return {out.str(), error.str()};
}

void expectOnError(Message message, const std::string& text) {
  EXPECT_EQ(orbseq::textOf(message), text);
  std::istringstream stream;
  EXPECT_EQ(printed(message, stream), std::make_pair(std::string(), text));
}

void expectOnOutput(Message message, const std::string& text) {
  EXPECT_EQ(orbseq::textOf(message), text);
  std::ostringstream stream;
  EXPECT_EQ(printed(message, stream), std::make_pair(text, std::string()));
}

TEST(Messages, FailuresOfReadingGoToStandardError) {
  expectOnError(Message::kReadingDictionary, "Error reading SequenceDictionary!\n");
  expectOnError(Message::kReadingSettings, "Error reading SeqDictionarySettings!\n");
  expectOnError(Message::kReadingTable, "Error reading HashtableSQPair!\n");
  expectOnError(Message::kReadingSequence, "Failure reading NTSequence!\n");
  expectOnError(Message::kReadingCounter, "Error reading SequenceCounter!\n");
  expectOnError(Message::kReadingAdjacency, "Error reading Sequence!\n");
  expectOnError(Message::kReadingStatistics, "Error reading StatsBucket!\n");
}

TEST(Messages, FailuresOfSavingGoToStandardOutput) {
  expectOnOutput(Message::kSavingDictionary, "Bad stream for saving SequenceDictionary!\n");
  expectOnOutput(Message::kSavingDictionaryXml,
                 "Bad stream for saving SequenceDictionary to XML!\n");
}

TEST(Messages, AFailedStreamPrintsToo) {
  std::ostringstream stream;
  stream.setstate(std::ios::badbit | std::ios::failbit);

  EXPECT_EQ(printed(Message::kSavingDictionary, stream).first,
            "Bad stream for saving SequenceDictionary!\n");
}

TEST(Messages, NothingIsPrintedForASilencedStream) {
  const std::pair<std::string, std::string> nothing;
  std::stringstream silenced;

  orbseq::silence(silenced);

  EXPECT_EQ(printed(Message::kReadingDictionary, silenced), nothing);
  EXPECT_EQ(printed(Message::kSavingDictionary, silenced), nothing);
}

TEST(Messages, SilenceHoldsForItsStreamAlone) {
  std::istringstream silenced, other;

  orbseq::silence(silenced);

  EXPECT_EQ(printed(Message::kReadingSequence, other).second, "Failure reading NTSequence!\n");
}

}  // namespace
