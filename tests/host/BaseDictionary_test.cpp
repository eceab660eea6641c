#include "scoring/hostapi/BaseDictionary.h"

#include <gmock/gmock.h>

namespace {

using OrbScore::BaseDictionary;
using OrbScore::DictVar;
using ::testing::ElementsAre;

DictVar* variable(const std::string& name) { return new DictVar(name, DictVar::kCategorical); }

TEST(BaseDictionary, IsEmptyAtFirst) {
  const BaseDictionary dictionary;

  EXPECT_EQ(dictionary.GetSize(), 0u);
  EXPECT_EQ(dictionary.GetVariable(""), nullptr);
}

TEST(BaseDictionary, FindsAVariableByItsName) {
  BaseDictionary dictionary;

  EXPECT_TRUE(dictionary.AddVariable("7", variable("seven")));

  EXPECT_EQ(dictionary.GetVariable("7")->GetName(), "seven");
  EXPECT_EQ(dictionary.GetVariable("8"), nullptr);
}

TEST(BaseDictionary, TheFirstVariableOfANameStands) {
  BaseDictionary dictionary;
  dictionary.AddVariable("7", variable("first"));

  EXPECT_FALSE(dictionary.AddVariable("7", variable("second")));

  EXPECT_EQ(dictionary.GetVariable("7")->GetName(), "first");
  EXPECT_EQ(dictionary.GetSize(), 1u);
}

TEST(BaseDictionary, TakesNoNullVariable) {
  BaseDictionary dictionary;

  EXPECT_FALSE(dictionary.AddVariable("7", nullptr));

  EXPECT_EQ(dictionary.GetSize(), 0u);
}

TEST(BaseDictionary, NamesComeInTheOrderOfTheirBytes) {
  BaseDictionary dictionary;
  for (const char* name : {"b", "\xC3\xA4", "B", "10", "9"})
    dictionary.AddVariable(name, variable(name));

  EXPECT_THAT(dictionary.GetNames(), ElementsAre("10", "9", "B", "b", "\xC3\xA4"));
}

}  // namespace
