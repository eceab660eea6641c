#include "scoring/hostapi/BaseModel.h"

#include <gtest/gtest.h>

#include <sstream>

#include "scoring/hostapi/BaseDictionary.h"

namespace {

using OrbScore::BaseDictionary;
using OrbScore::BaseModel;
using OrbScore::VersionInfo;

class PlainModel : public BaseModel {
 public:
  OrbScore::OrbStatus GetScore(const OrbScore::ScoreCaseRecord*, OrbScore::ScoreResult*&,
                               bool) const override {
    return {};
  }
};

class NotedDictionary : public BaseDictionary {
 public:
  explicit NotedDictionary(int& destroyed) : destroyed_(destroyed) {}
  ~NotedDictionary() override { ++destroyed_; }

 private:
  int& destroyed_;
};

TEST(BaseModel, HasNoLabelsNoVersionAndNoVariablesAtFirst) {
  const PlainModel model;

  EXPECT_EQ(model.GetScoreDictionary(), nullptr);
  EXPECT_EQ(model.GetVersionInfo().GetVersion(), "");
  EXPECT_EQ(model.GetVarsOfRole(BaseModel::kActive), nullptr);
  EXPECT_EQ(model.GetModelType(), BaseModel::kUnknownModel);
}

TEST(BaseModel, RemembersWhetherOnlyThePredictionIsWanted) {
  PlainModel model;
  EXPECT_FALSE(model.GetPredictionOnly());

  model.SetPredictionOnly(true);

  EXPECT_TRUE(model.GetPredictionOnly());
}

TEST(BaseModel, DestroysThePreviousDictionary) {
  int destroyed = 0;
  PlainModel model;
  model.SetScoreDictionary(new NotedDictionary(destroyed));

  model.SetScoreDictionary(nullptr);

  EXPECT_EQ(destroyed, 1);
  EXPECT_EQ(model.GetScoreDictionary(), nullptr);
}

TEST(BaseModel, KeepsTheDictionaryThatItIsGivenAgain) {
  int destroyed = 0;
  PlainModel model;
  auto* const dictionary = new NotedDictionary(destroyed);
  model.SetScoreDictionary(dictionary);

  model.SetScoreDictionary(dictionary);

  EXPECT_EQ(destroyed, 0);
  EXPECT_EQ(model.GetScoreDictionary(), dictionary);
}

TEST(BaseModel, DestroysItsDictionaryWithItself) {
  int destroyed = 0;

  { PlainModel().SetScoreDictionary(new NotedDictionary(destroyed)); }

  EXPECT_EQ(destroyed, 1);
}

TEST(BaseModel, DisplaysTypeAndVersion) {
  PlainModel model;
  model.SetVersionInfo(VersionInfo("3.2"));
  std::ostringstream os;

  model.Display(os);

  EXPECT_EQ(os.str(), "Model of type 0, version 3.2\n");
}

}  // namespace
