#include "common/platform/MappedFile.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <string_view>
#include <system_error>

#include "tests/support/TempFolder.h"

namespace {

using orbseq::platform::MappedFile;
using orbseq::test::TempFolder;

int errorOf(const std::string& path) {
  try {
    const MappedFile file(path);
  } catch (const std::system_error& error) {
    return error.code().value();
  }
  return 0;
}

TEST(MappedFile, HoldsTheBytes) {
  const TempFolder folder;
  const MappedFile file(folder.file("f", "some bytes"));

  const auto bytes = file.bytes();
  EXPECT_EQ(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()),
            "some bytes");
}

TEST(MappedFile, AnEmptyFileHasNone) {
  const TempFolder folder;

  EXPECT_TRUE(MappedFile(folder.file("f", "")).bytes().empty());
}

TEST(MappedFile, WhatIsNoFileIsRefused) {
  const TempFolder folder;

  EXPECT_EQ(errorOf(folder.path("none")), ENOENT);
  EXPECT_EQ(errorOf(folder.path().string()), EISDIR);
  EXPECT_EQ(errorOf("/dev/null"), EINVAL);
}

}  // namespace
