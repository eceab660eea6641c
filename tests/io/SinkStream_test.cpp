#include "io/SinkStream.h"

#include <gtest/gtest.h>

#include <locale>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/TempFolder.h"

namespace {

using orbseq::SinkStream;
using orbseq::test::errorOf;

class Comma final : public std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
};

TEST(SinkStream, EveryByteReachesTheSinkInOrder) {
  std::string got, wanted;
  SinkStream stream([&got](std::string_view bytes) { got += bytes; });
  for (int i = 0; i < 50'000; ++i) {
    stream << i << ' ';
    wanted += std::to_string(i) + ' ';
  }
  stream.write("\0\xFF", 2);
  wanted += std::string("\0\xFF", 2);
  const std::string large(300'000, 'x');
  stream << large;
  stream.finish();

  EXPECT_TRUE(stream.good());
  EXPECT_TRUE(got == wanted + large);
}

TEST(SinkStream, BytesComeInLargeBlocksAlsoWhenTheStreamIsFlushed) {
  std::vector<std::size_t> blocks;
  SinkStream stream([&blocks](std::string_view bytes) { blocks.push_back(bytes.size()); });
  for (int i = 0; i < 100'000; ++i) stream << 'x' << std::flush;
  stream.finish();

  EXPECT_EQ(blocks, (std::vector<std::size_t>{65'536, 34'464}));
}

TEST(SinkStream, NumbersAreWrittenInTheClassicLocale) {
  const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Comma));
  std::string got;
  SinkStream stream([&got](std::string_view bytes) { got += bytes; });
  stream << 0.5 << ' ' << 1234567;
  stream.finish();
  std::locale::global(before);

  EXPECT_EQ(got, "0.5 1234567");
}

TEST(SinkStream, WhatTheSinkThrowsIsKeptForFinish) {
  int calls = 0;
  SinkStream stream([&calls](std::string_view) {
    ++calls;
    throw std::runtime_error("the sink is full");
  });
  for (int i = 0; i < 300'000; ++i) stream << 'x';  // nobody looks

  EXPECT_FALSE(stream.good());
  EXPECT_EQ(errorOf<std::runtime_error>([&] { stream.finish(); }), "the sink is full");
  EXPECT_EQ(errorOf<std::runtime_error>([&] { stream.finish(); }), "the sink is full");
  EXPECT_EQ(calls, 1);
}

TEST(SinkStream, WhatTheSinkThrowsAtTheLastBlockComesFromFinish) {
  SinkStream stream([](std::string_view) { throw std::logic_error("not this one"); });
  stream << "few bytes";

  EXPECT_TRUE(stream.good());
  EXPECT_EQ(errorOf<std::logic_error>([&] { stream.finish(); }), "not this one");
}

TEST(SinkStream, WhatIsNotHandedOverIsDropped) {
  std::string got;
  {
    SinkStream([&got](std::string_view bytes) { got += bytes; }) << "few bytes";
  }

  EXPECT_EQ(got, "");
}

}  // namespace
