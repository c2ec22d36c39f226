// Tests of what undo knows files by.

#include "migration/Fingerprint.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "Workspace.h"

namespace {

// The sums are those of xxhsum -H2.
TEST(Fingerprint, IsThatOfOtherPrograms) {
  EXPECT_EQ(tool::fingerprint(""), "xxh3:99aa06d3014798d86001c324468d497f");
  EXPECT_EQ(tool::fingerprint("abc"), "xxh3:06b05ab6733a618578af5f94892f3950");
  EXPECT_EQ(tool::fingerprint(std::string(1000000, 'a')), "xxh3:a545df8e384a9579b1fd6fae5285c4eb");
}

TEST(Fingerprint, IsTheSameOfPiecesAndOfAFile) {
  const Workspace workspace;
  std::string text;
  for (int i = 0; i < 100000; ++i) text += std::to_string(i) + "\n";
  const std::string path = workspace.write("file", text);
  EXPECT_EQ(tool::fingerprintOfFile(path), tool::fingerprint(text));
  for (const std::size_t size : {std::size_t{1}, std::size_t{1000}, std::size_t{65536}, text.size()}) {
    std::vector<std::string_view> pieces;
    for (std::size_t at = 0; at < text.size(); at += size) pieces.push_back(std::string_view(text).substr(at, size));
    EXPECT_EQ(tool::fingerprint(pieces), tool::fingerprint(text)) << size;
  }
}

TEST(Fingerprint, IsAnotherOneWhenOneBitIs) {
  std::string text(5000, 'x');
  const std::string before = tool::fingerprint(text);
  for (char& c : text) {
    c ^= 1;
    EXPECT_NE(tool::fingerprint(text), before);
    c ^= 1;
  }
  EXPECT_EQ(tool::fingerprint(text), before);
}

TEST(Fingerprint, OfAFileThatCannotBeReadIsNone) {
  const Workspace workspace;
  EXPECT_EQ(tool::fingerprintOfFile(workspace.path("none")), "");
  EXPECT_EQ(tool::fingerprintOfFile(workspace.path("")), "") << "a directory";
}

TEST(Fingerprint, IsKnownByItsForm) {
  EXPECT_TRUE(tool::isFingerprint(tool::fingerprint("abc")));
  for (const char* other : {"", "xxh3:", "06b05ab6733a618578af5f94892f3950", "xxh3:06b05ab6733a618578af5f94892f395",
                            "xxh3:06b05ab6733a618578af5f94892f39500", "xxh3:06B05AB6733A618578AF5F94892F3950"}) {
    EXPECT_FALSE(tool::isFingerprint(other)) << other;
  }
}

}  // namespace
