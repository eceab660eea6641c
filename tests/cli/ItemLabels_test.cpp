#include "cli/ItemLabels.h"
#include "io/modelLabels.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

#include "scoring/hostapi/BaseDictionary.h"

namespace {

using orbseq::ItemLabels;

std::string bracketed(std::string_view text) { return "[" + std::string(text) + "]"; }

void add(OrbScore::BaseDictionary& dictionary, const std::string& name, const std::string& label) {
  auto variable = std::make_unique<OrbScore::DictVar>(name, OrbScore::ScoreDictVar::kCategorical);
  variable->SetMappedLabel(label);
  dictionary.AddVariable(name, variable.release());
}

TEST(ItemLabels, ALabelIsFoundByItsItemInItsForm) {
  OrbScore::BaseDictionary dictionary;
  add(dictionary, "7", "tea");
  add(dictionary, "-2147483648", "lowest");

  const ItemLabels labels(orbseq::labelsOf(&dictionary), bracketed);

  EXPECT_EQ(labels.of(7), "[tea]");
  EXPECT_EQ(labels.of(-2147483647 - 1), "[lowest]");
}

TEST(ItemLabels, AnItemWithoutLabelHasTheFormOfTheEmptyText) {
  OrbScore::BaseDictionary dictionary;
  add(dictionary, "7", "");

  const ItemLabels labels(orbseq::labelsOf(&dictionary), bracketed);

  EXPECT_EQ(labels.of(7), "[]");
  EXPECT_EQ(labels.of(8), "[]");
}

TEST(ItemLabels, AModelWithoutDictionaryHasNoLabels) {
  const ItemLabels labels(orbseq::labelsOf(nullptr), bracketed);

  EXPECT_EQ(labels.of(7), "[]");
}

TEST(ItemLabels, NamesThatAreNoItemNumbersAreLeftOut) {
  OrbScore::BaseDictionary dictionary;
  add(dictionary, "007", "seven");
  add(dictionary, "7x", "seven");
  add(dictionary, "2147483648", "too large");
  add(dictionary, "", "nothing");

  const ItemLabels labels(orbseq::labelsOf(&dictionary), bracketed);

  EXPECT_EQ(labels.of(7), "[]");
  EXPECT_TRUE(labels.all().empty());
}

}  // namespace
