// A file beyond the limit is refused before it is read, and the limit can be raised.

#include "Limits.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include "Inspection.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

using test::TemporaryDirectory;

class LimitsOfFiles : public testing::Test {
 protected:
  LimitsOfFiles() { forget(); }
  ~LimitsOfFiles() override { forget(); }

  static void forget() {
    ::unsetenv(kFileSizeVariable);
    setLimits({0});
  }
  static std::string whatOpening(const std::string& path) {
    try {
      const ConfigStore store(path);
      return "";
    } catch (const OpenError& error) {
      return error.what();
    }
  }

  const TemporaryDirectory m_directory;
  const std::string m_text = "dn: CN=A\n";
  const std::string m_path = m_directory.write("a.ldif", m_text);
};

TEST_F(LimitsOfFiles, AreOneGibibyteUnlessSet) {
  EXPECT_EQ(limits().fileSize, 1073741824U);
  setLimits({5});
  EXPECT_EQ(limits().fileSize, 5U);
}

TEST_F(LimitsOfFiles, RefuseAFileThatIsLarger) {
  setLimits({m_text.size() - 1});
  EXPECT_EQ(whatOpening(m_path), m_path +
                                     ": has 9 bytes, more than the limit of 8 bytes; CFGMIG_MAX_FILE_SIZE in the "
                                     "environment can raise it");
  setLimits({m_text.size()});
  EXPECT_EQ(whatOpening(m_path), "");
}

// A file of five gigabytes that takes no room on the disk. Reading it would take seconds and most of the memory.
TEST_F(LimitsOfFiles, RefuseAHugeFileWithoutReadingIt) {
  const std::string path = m_directory.write("huge.ldif", "");
  std::filesystem::resize_file(path, std::uintmax_t{5} << 30);
  EXPECT_EQ(whatOpening(path), path +
                                   ": has 5368709120 bytes, more than the limit of 1073741824 bytes; "
                                   "CFGMIG_MAX_FILE_SIZE in the environment can raise it");
}

TEST_F(LimitsOfFiles, HoldForAnInspection) {
  setLimits({3});
  const Inspection inspection = inspect(m_path);
  ASSERT_EQ(inspection.remarks.size(), 1U);
  EXPECT_EQ(inspection.remarks[0].kind, RemarkKind::fileTooLarge);
  EXPECT_EQ(inspection.remarks[0].line, 0U);
  EXPECT_EQ(inspection.errors, 1U);
}

TEST_F(LimitsOfFiles, HoldForAPipeAsSoonAsTheyAreReached) {
  const std::string path = m_directory.file("pipe");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  for (const std::size_t size : {std::size_t{1000}, std::size_t{1001}, std::size_t{70000}, std::size_t{200000}}) {
    std::string text = "dn: CN=A\n# ";
    text.resize(size, 'x');
    for (const std::size_t limit : {size, size - 1}) {
      setLimits({limit});
      std::thread writer([&] { test::writeFile(path, text); });
      const std::string expected = path + ": goes on, more than the limit of " + std::to_string(limit) +
                                   " bytes; CFGMIG_MAX_FILE_SIZE in the environment can raise it";
      EXPECT_EQ(whatOpening(path), limit == size ? "" : expected);
      writer.join();
    }
  }
}

TEST_F(LimitsOfFiles, EndAPipeThatNeverEnds) {
  const auto before = std::signal(SIGPIPE, SIG_IGN);
  const std::string path = m_directory.file("pipe");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  setLimits({1000000});
  std::size_t written = 0;
  std::thread writer([&] {
    const int pipe = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
    const std::string block(4096, '#');
    for (ssize_t got = 0; (got = ::write(pipe, block.data(), block.size())) > 0;)
      written += static_cast<std::size_t>(got);
    ::close(pipe);
  });
  EXPECT_NE(whatOpening(path), "");
  writer.join();
  EXPECT_LT(written, 1200000U);
  std::signal(SIGPIPE, before);
}

TEST_F(LimitsOfFiles, AreReadFromTheEnvironmentUnlessSet) {
  ::setenv(kFileSizeVariable, "8", 1);
  EXPECT_NE(whatOpening(m_path), "");
  forget();
  ::setenv(kFileSizeVariable, "2k", 1);
  EXPECT_EQ(limits().fileSize, 2048U);
  EXPECT_EQ(whatOpening(m_path), "");
  forget();
  setLimits({100});
  ::setenv(kFileSizeVariable, "8", 1);
  EXPECT_EQ(whatOpening(m_path), "");
  forget();
  ::setenv(kFileSizeVariable, "", 1);
  EXPECT_EQ(limits().fileSize, 1073741824U);
}

TEST_F(LimitsOfFiles, RefuseToOpenAnythingWhileTheEnvironmentHoldsNoSize) {
  ::setenv(kFileSizeVariable, "much", 1);
  EXPECT_THROW(limits(), std::runtime_error);
  EXPECT_EQ(whatOpening(m_path), m_path +
                                     ": CFGMIG_MAX_FILE_SIZE is no size; expected a number of bytes, or one with "
                                     "K, M or G behind it");
  setLimits({100});
  EXPECT_EQ(whatOpening(m_path), "");
}

TEST(ParseSize, ReadsBytesAndUnits) {
  EXPECT_EQ(parseSize("1"), 1U);
  EXPECT_EQ(parseSize("1073741824"), 1073741824U);
  EXPECT_EQ(parseSize("3k"), 3072U);
  EXPECT_EQ(parseSize("3K"), 3072U);
  EXPECT_EQ(parseSize("2M"), 2097152U);
  EXPECT_EQ(parseSize("4g"), 4294967296U);
  EXPECT_EQ(parseSize("18446744073709551615"), 18446744073709551615U);
}

TEST(ParseSize, RefusesEverythingElse) {
  for (const char* text : {"", "0", "0K", "-1", "+1", " 1", "1 ", "1KB", "1T", "K", "0x10", "1.5G",
                           "18446744073709551616", "18446744073709551615K", "17179869184G"}) {
    EXPECT_FALSE(parseSize(text).has_value()) << text;
  }
}

}  // namespace
}  // namespace cfgstore
