#include "xml/ExportFormat.h"

#include <gtest/gtest.h>

namespace {

using OrbXML_830::ExportFormat;

TEST(ExportFormat, ANewFormatBeginsAParagraphWithoutIndentationAtLevelZero) {
  const ExportFormat format;

  EXPECT_TRUE(format.IsNewParagraph());
  EXPECT_FALSE(format.HasIndentation());
  EXPECT_EQ(format.GetLevel(), 0);
}

TEST(ExportFormat, TheFormatFlagIsTheMasterOfTheOthers) {
  ExportFormat format;
  format.SetIndentation(true);

  format.SetFormat(false);
  EXPECT_FALSE(format.IsNewParagraph());
  EXPECT_FALSE(format.HasIndentation());

  format.SetFormat(true);
  EXPECT_TRUE(format.IsNewParagraph());
  EXPECT_TRUE(format.HasIndentation());
}

TEST(ExportFormat, EachFlagIsSetAlone) {
  ExportFormat format;

  format.SetIsNewParagraph(false);

  EXPECT_FALSE(format.IsNewParagraph());
  EXPECT_FALSE(format.HasIndentation());
}

TEST(ExportFormat, TheLevelRisesAndFalls) {
  ExportFormat format;

  format.EnterLevel();
  format.EnterLevel();
  format.LeaveLevel();

  EXPECT_EQ(format.GetLevel(), 1);
}

TEST(ExportFormat, AssignmentCopiesEveryMember) {
  ExportFormat source, target;
  source.SetIsNewParagraph(false);
  source.SetIndentation(true);
  source.EnterLevel();

  target = source;

  EXPECT_FALSE(target.IsNewParagraph());
  EXPECT_TRUE(target.HasIndentation());
  EXPECT_EQ(target.GetLevel(), 1);
}

}  // namespace
