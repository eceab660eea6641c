#include "sequence/SeqConsequentDescriptor.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/captureOutput.h"

namespace {

using orbseq::test::CapturedOutput;
using SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor;

TEST(SeqConsequentDescriptor, TheConstructorTakesSupportBeforeConfidence) {
  const SeqConsequentDescriptor descriptor(7, 0.1, 0.9, 0.3);

  EXPECT_EQ(descriptor.GetItem(), 7);
  EXPECT_EQ(descriptor.GetSupport(), 0.1);
  EXPECT_EQ(descriptor.GetConfidence(), 0.9);
  EXPECT_EQ(descriptor.GetCause(), 0.3);
}

TEST(SeqConsequentDescriptor, EveryFieldCanBeSetAlone) {
  SeqConsequentDescriptor descriptor(7, 0.1, 0.9, 0.3);

  descriptor.SetItem(-8);
  EXPECT_EQ(descriptor.GetItem(), -8);

  descriptor.SetSupport(0.2);
  EXPECT_EQ(descriptor.GetSupport(), 0.2);
  EXPECT_EQ(descriptor.GetConfidence(), 0.9);

  descriptor.SetConfidence(0.8);
  EXPECT_EQ(descriptor.GetConfidence(), 0.8);
  EXPECT_EQ(descriptor.GetSupport(), 0.2);

  descriptor.SetCause(0.4);
  EXPECT_EQ(descriptor.GetCause(), 0.4);
}

TEST(SeqConsequentDescriptor, AssignmentReplaces) {
  SeqConsequentDescriptor target(7, 0.1, 0.9, 0.3);

  target = SeqConsequentDescriptor(8, 0.2, 0.5, 0.4);

  EXPECT_EQ(target.GetItem(), 8);
  EXPECT_EQ(target.GetSupport(), 0.2);
  EXPECT_EQ(target.GetConfidence(), 0.5);
  EXPECT_EQ(target.GetCause(), 0.4);
}

TEST(SeqConsequentDescriptor, DisplayWritesALine) {
  const CapturedOutput output;

  SeqConsequentDescriptor(7, 0.1, 0.9, 0.3).display();

  EXPECT_EQ(output.text(), "Item 7 Support 0.1 Confidence 0.9 Cause 0.3\n");
}

// Deliberate: the support is written before the precision changes.
TEST(SeqConsequentDescriptor, DisplayWritesTheSupportInTheStreamsOwnPrecision) {
  const CapturedOutput output;

  SeqConsequentDescriptor(7, 0.12345678901, 0.12345678901, 0.98765432109).display();

  EXPECT_EQ(output.text(), "Item 7 Support 0.123457 Confidence 0.123456789 Cause 0.9876543211\n");
}

// Deliberate: the stream's precision is not restored.
TEST(SeqConsequentDescriptor, DisplayLeavesThePrecisionTen) {
  const CapturedOutput output;

  SeqConsequentDescriptor(7, 0.1, 0.9, 0.3).display();

  EXPECT_EQ(output.precision(), 10);
  EXPECT_FALSE(output.isFixed());
}

}  // namespace
