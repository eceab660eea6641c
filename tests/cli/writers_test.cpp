#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cli/CsvWriter.h"
#include "cli/JsonLinesWriter.h"
#include "cli/TableWriter.h"
#include "io/modelLabels.h"
#include "scoring/hostapi/BaseDictionary.h"

namespace {

using orbseq::CsvWriter;
using orbseq::JsonLinesWriter;
using orbseq::TableWriter;
using SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor;

std::unique_ptr<OrbScore::BaseDictionary> dictionary(
    const std::vector<std::pair<std::string, std::string>>& labels) {
  auto result = std::make_unique<OrbScore::BaseDictionary>();
  for (const auto& [name, label] : labels) {
    auto variable = std::make_unique<OrbScore::DictVar>(name, OrbScore::ScoreDictVar::kCategorical);
    variable->SetMappedLabel(label);
    result->AddVariable(name, variable.release());
  }
  return result;
}

SeqConsequentDescriptor answer(std::int32_t item, double confidence, double support, double cause) {
  return {item, support, confidence, cause};
}

template <class Writer>
std::string written(const OrbScore::ScoreDictionary* labels, const std::string& customer,
                    const std::vector<SeqConsequentDescriptor>& answers) {
  Writer writer(orbseq::labelsOf(labels));
  std::string out;
  writer.appendHeader(out);
  writer.appendAnswers(out, customer, answers);
  return out;
}

TEST(CsvWriter, AnAnswerIsARow) {
  const auto labels = dictionary({{"7", "tea"}});

  EXPECT_EQ(written<CsvWriter>(labels.get(), "17",
                               {answer(7, 0.5, 0.25, 0.125), answer(8, 0.25, 0.0, 1.0)}),
            "customer,rank,item,label,confidence,support,cause\n"
            "17,1,7,tea,0.5,0.25,0.125\n"
            "17,2,8,,0.25,0,1\n");
}

TEST(CsvWriter, NumbersHaveSeventeenDigits) {
  EXPECT_EQ(written<CsvWriter>(nullptr, "17", {answer(-7, 1.0 / 3.0, 0.1, 1e-10)}),
            "customer,rank,item,label,confidence,support,cause\n"
            "17,1,-7,,0.33333333333333331,0.10000000000000001,1e-10\n");
}

TEST(CsvWriter, FieldsAreQuotedWhereTheyMustBe) {
  const auto labels = dictionary({{"7", "say \"tea\""}});

  EXPECT_EQ(written<CsvWriter>(labels.get(), "a,b", {answer(7, 0, 0, 0)}),
            "customer,rank,item,label,confidence,support,cause\n"
            "\"a,b\",1,7,\"say \"\"tea\"\"\",0,0,0\n");
  EXPECT_EQ(written<CsvWriter>(labels.get(), "a\nb", {answer(8, 0, 0, 0)}),
            "customer,rank,item,label,confidence,support,cause\n"
            "\"a\nb\",1,8,,0,0,0\n");
}

TEST(CsvWriter, ACustomerWithoutAnswersHasNoRow) {
  EXPECT_EQ(written<CsvWriter>(nullptr, "17", {}),
            "customer,rank,item,label,confidence,support,cause\n");
}

TEST(JsonLinesWriter, AnAnswerIsALine) {
  const auto labels = dictionary({{"7", "tea"}});

  EXPECT_EQ(written<JsonLinesWriter>(labels.get(), "17",
                                     {answer(7, 0.5, 0.25, 0.125), answer(8, 0.1, 0, 1)}),
            "{\"customer\":\"17\",\"rank\":1,\"item\":7,\"label\":\"tea\",\"confidence\":0.5,"
            "\"support\":0.25,\"cause\":0.125}\n"
            "{\"customer\":\"17\",\"rank\":2,\"item\":8,\"label\":\"\",\"confidence\":"
            "0.10000000000000001,\"support\":0,\"cause\":1}\n");
}

TEST(JsonLinesWriter, TextsAreEscaped) {
  const auto labels = dictionary({{"7", "a\\b\x01\u00FC\xFF"}});

  EXPECT_EQ(written<JsonLinesWriter>(labels.get(), "\"x\"\n", {answer(7, 0, 0, 0)}),
            "{\"customer\":\"\\\"x\\\"\\n\",\"rank\":1,\"item\":7,\"label\":"
            "\"a\\\\b\\u0001\u00FC\uFFFD\",\"confidence\":0,\"support\":0,\"cause\":0}\n");
}

TEST(JsonLinesWriter, ANumberThatIsNotFiniteIsNull) {
  const double infinity = std::numeric_limits<double>::infinity();

  EXPECT_EQ(written<JsonLinesWriter>(nullptr, "1", {answer(7, infinity, -infinity, 0)}),
            "{\"customer\":\"1\",\"rank\":1,\"item\":7,\"label\":\"\",\"confidence\":null,"
            "\"support\":null,\"cause\":0}\n");
}

TEST(JsonLinesWriter, ACustomerWithoutAnswersHasNoLine) {
  EXPECT_EQ(written<JsonLinesWriter>(nullptr, "17", {}), "");
}

TEST(TableWriter, ColumnsAreAlignedByWhatATerminalShows) {
  const auto labels = dictionary({{"7", "\u7DD1\u8336"}, {"120045", "Earl Grey"}});

  EXPECT_EQ(written<TableWriter>(labels.get(), "17",
                                 {answer(7, 0.5, 0.25, 0.125), answer(120045, 0.25, 0.2, 1)}),
            "  rank    item  label      confidence  support   cause\n"
            "\n"
            "customer 17\n"
            "     1       7  \u7DD1\u8336           0.5000   0.2500  0.1250\n"
            "     2  120045  Earl Grey      0.2500   0.2000  1.0000\n");
}

TEST(TableWriter, AModelWithoutLabelsHasNoLabelColumn) {
  EXPECT_EQ(written<TableWriter>(nullptr, "17", {answer(7, 0.5, 0.25, 0.125)}),
            "  rank  item  confidence  support   cause\n"
            "\n"
            "customer 17\n"
            "     1     7      0.5000   0.2500  0.1250\n");
}

TEST(TableWriter, LongLabelsAreCut) {
  const auto labels = dictionary({{"7", std::string(50, 'x')}});

  EXPECT_EQ(written<TableWriter>(labels.get(), "1", {answer(7, 0, 0, 0)}),
            "  rank  item  label                                     confidence  support   cause\n"
            "\n"
            "customer 1\n"
            "     1     7  xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\u2026      0.0000   0.0000"
            "  0.0000\n");
}

TEST(TableWriter, ACustomerWithoutAnswersIsShown) {
  EXPECT_EQ(written<TableWriter>(nullptr, "17", {}),
            "  rank  item  confidence  support   cause\n"
            "\n"
            "customer 17\n"
            "  no answer\n");
}

TEST(TableWriter, NothingSteersTheTerminal) {
  const auto labels = dictionary({{"7", "a\x1B[1mb"}});

  EXPECT_EQ(written<TableWriter>(labels.get(), "1\x1B", {answer(7, 0, 0, 0)}),
            "  rank  item  label   confidence  support   cause\n"
            "\n"
            "customer 1\uFFFD\n"
            "     1     7  a\uFFFD[1mb      0.0000   0.0000  0.0000\n");
}

}  // namespace
