#include "io/failure.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <new>
#include <stdexcept>
#include <string>

#include "engine/Workspace.h"
#include "engine/caseText.h"
#include "engine/compiledForm.h"
#include "host/EnvironmentError.h"
#include "io/IoError.h"
#include "io/LogBuilder.h"
#include "io/historyText.h"
#include "mining/MinerOptions.h"
#include "sequence/SeqExceptions.h"

namespace {

using orbseq::Failure;
using orbseq::FailureKind;
using SEQUENCE_NAMESPACE_800::SeqExceptions;

template <class Operation>
Failure failureOf(Operation operation) {
  try {
    operation();
  } catch (...) {
    return orbseq::currentFailure();
  }
  return {FailureKind::kBug, "nothing was thrown"};
}

struct Row {
  const char* name;
  void (*operation)();
  FailureKind kind;
  const char* text;
};

void PrintTo(const Row& row, std::ostream* os) { *os << row.name; }

class FailureKinds : public testing::TestWithParam<Row> {};

TEST_P(FailureKinds, HaveTheirKindAndText) {
  const Failure failure = failureOf(GetParam().operation);

  EXPECT_EQ(failure.kind, GetParam().kind);
  EXPECT_EQ(failure.text, GetParam().text);
}

const Row kRows[] = {
    {"badInput", [] { throw orbseq::InputError("log.csv", 3, 2, "the item is empty"); },
     FailureKind::kInput, "log.csv:3:2: the item is empty"},
    {"badFile", [] { throw orbseq::FileError("log.csv", "open", ENOENT); },
     FailureKind::kEnvironment, "log.csv: cannot open: No such file or directory"},
    {"badMachine", [] { throw OrbScore::EnvironmentError("a.so: cannot load the plug-in"); },
     FailureKind::kEnvironment, "a.so: cannot load the plug-in"},
    {"badDocument", [] { throw OrbScore::QuException("m.xml:1:1: the document is empty"); },
     FailureKind::kInput, "m.xml:1:1: the document is empty"},
    {"stoppedMiner",
     [] {
       throw orbseq::MinerStopped(orbseq::MinerStopped::Reason::kMemory, "the limit of memory");
     },
     FailureKind::kEnvironment, "the limit of memory"},
    {"noMemory", [] { throw std::bad_alloc(); }, FailureKind::kEnvironment, "out of memory"},
    {"noMemoryOfADictionary", [] { throw SeqExceptions::DictionaryFailure(); },
     FailureKind::kEnvironment, "out of memory"},
    {"badStreamByPointer", [] { throw new SeqExceptions::IOException("offset 0x0, marker"); },
     FailureKind::kInput, "offset 0x0, marker"},
    {"badStreamByValue", [] { throw SeqExceptions::IOException("offset 0x0, marker"); },
     FailureKind::kInput, "offset 0x0, marker"},
    {"caseLimit", [] { throw orbseq::engine::CaseLimitPassed("more than 3 items"); },
     FailureKind::kInput, "more than 3 items"},
    {"compiledForm", [] { throw orbseq::engine::CompiledFormError(16, "no item"); },
     FailureKind::kInput, "offset 0x10: no item"},
    {"history", [] { throw orbseq::HistoryTextError(13, "the time is not closed"); },
     FailureKind::kInput, "byte 14: the time is not closed"},
    {"fullLog", [] { throw orbseq::LogBuilder::Full("more than 4 items"); }, FailureKind::kInput,
     "more than 4 items"},
    {"ours", [] { throw std::logic_error("no such level"); }, FailureKind::kBug, "no such level"},
    {"anything", [] { throw 42; }, FailureKind::kBug, "unknown failure"},
};

INSTANTIATE_TEST_SUITE_P(All, FailureKinds, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Failure, ASpentBudgetIsBadInput) {
  const Failure failure = failureOf([] { throw orbseq::engine::StepBudgetSpent(10); });

  EXPECT_EQ(failure.kind, FailureKind::kInput);
  EXPECT_NE(failure.text.find("10"), std::string::npos);
}

}  // namespace
