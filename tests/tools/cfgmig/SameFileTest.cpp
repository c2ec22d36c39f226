// Tests of which paths lead to one file, also where there is none yet.

#include "SameFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "Workspace.h"

namespace {

namespace fs = std::filesystem;

using tool::isSameFile;
using tool::whyNoTarget;

class SameFile : public testing::Test {
 protected:
  SameFile() {
    fs::create_directory(workspace.path("below"));
    fs::create_symlink("none", workspace.path("relative"));
    fs::create_symlink(workspace.path("none"), workspace.path("absolute"));
    fs::create_symlink("../relative", workspace.path("below/twice"));
    fs::create_symlink("loop", workspace.path("loop"));
  }

  const Workspace workspace;
};

TEST_F(SameFile, IsOneUnderAllItsNames) {
  workspace.write("none", "");
  fs::create_hard_link(workspace.path("none"), workspace.path("second"));
  for (const char* name : {"none", "second", "relative", "absolute", "below/twice", "below/../none", "./none"}) {
    EXPECT_TRUE(isSameFile(workspace.path("none"), workspace.path(name))) << name;
  }
  EXPECT_FALSE(isSameFile(workspace.path("none"), workspace.write("other", "")));
}

TEST_F(SameFile, IsOneAtTheEndOfLinksBeforeThereIsAFile) {
  for (const char* name : {"none", "relative", "absolute", "below/twice", "below/../none"}) {
    EXPECT_TRUE(isSameFile(workspace.path("none"), workspace.path(name))) << name;
    EXPECT_TRUE(isSameFile(workspace.path(name), workspace.path("none"))) << name;
  }
  EXPECT_FALSE(isSameFile(workspace.path("none"), workspace.path("below/none")));
  EXPECT_FALSE(isSameFile(workspace.path("none"), workspace.path("another")));
  EXPECT_FALSE(isSameFile(workspace.path("none"), workspace.path("nowhere/none")));
  EXPECT_FALSE(isSameFile(workspace.path("none"), workspace.path("loop")));
  EXPECT_FALSE(isSameFile(workspace.path("none"), workspace.write("there", "")));
}

TEST_F(SameFile, CanBeWrittenAtTheEndOfALinkWhereThereIsADirectoryForIt) {
  for (const char* name : {"none", "relative", "below/twice", "below/none"}) {
    EXPECT_EQ(whyNoTarget(workspace.path(name)), "") << name;
  }
  fs::create_symlink(workspace.path("nowhere/x"), workspace.path("away"));
  EXPECT_EQ(whyNoTarget(workspace.path("away")), "its directory: No such file or directory");
  EXPECT_EQ(whyNoTarget(workspace.path("below")), "it is a directory");
  EXPECT_EQ(whyNoTarget(workspace.path("none/")), "it has no file name");
  workspace.write("file", "");
  EXPECT_EQ(whyNoTarget(workspace.path("file/x")), "its directory is not one");
  ASSERT_EQ(::mkfifo(workspace.path("pipe").c_str(), 0600), 0);
  EXPECT_EQ(whyNoTarget(workspace.path("pipe")), "it is not a regular file");
}

}  // namespace
