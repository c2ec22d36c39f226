// A disk without room: it is told before the first byte is written, and the old file stays.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <filesystem>

#include "AtomicFile.h"
#include "Child.h"
#include "FaultyFileSystem.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

using test::inChild;
using test::readFile;
using test::TemporaryDirectory;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::size_t kDiskSize = 256 * 1024;

class CountingFileSystem : public test::FaultyFileSystem {
 public:
  ssize_t write(int file, const void* from, std::size_t size) override {
    ++writes;
    return FaultyFileSystem::write(file, from, size);
  }
  int writes = 0;
};

class FullDisk : public testing::Test {
 protected:
  FullDisk() {
    std::string why;
    const auto read = SourceText::read(m_path, why);
    m_source = {m_path, read->resolvedPath(), read->stamp(), std::nullopt};
  }
  std::string save(FileSystem& files, std::string_view content) const {
    try {
      AtomicFile(files, m_path, m_source).save({&content, 1}, Backup::keep, 1700000000);
      return "saved";
    } catch (const SaveError& error) {
      return error.what();
    }
  }
  std::string check(FileSystem& files, std::string_view content) const {
    try {
      AtomicFile(files, m_path, m_source).check({&content, 1});
      return "fine";
    } catch (const SaveError& error) {
      return error.what();
    }
  }

  const TemporaryDirectory m_directory;
  std::string m_path = m_directory.write("config", "the old file\n");
  SourceFile m_source;
};

TEST_F(FullDisk, IsToldBeforeTheFirstByteIsWritten) {
  for (const int error : {ENOSPC, EDQUOT, EFBIG}) {
    CountingFileSystem files;
    files.failAll("fallocate", error);
    EXPECT_THAT(save(files, "the new file\n"), HasSubstr(m_path + ": cannot be written: "));
    EXPECT_EQ(files.writes, 0);
    EXPECT_EQ(readFile(m_path), "the old file\n");
    EXPECT_THAT(m_directory.names(), ElementsAre("config"));
  }
}

TEST_F(FullDisk, IsToldByTheWriteWhereNoRoomCanBeReserved) {
  test::FaultyFileSystem files;
  files.failAll("fallocate", EOPNOTSUPP);
  EXPECT_EQ(save(files, "the newer file\n"), "saved");

  class NoRoom : public test::FaultyFileSystem {
   public:
    int fallocate(int, off_t) override {
      errno = EOPNOTSUPP;
      return -1;
    }
    ssize_t write(int, const void*, std::size_t) override {
      errno = ENOSPC;
      return -1;
    }
  };
  NoRoom full;
  std::string why;
  m_source.stamp = SourceText::read(m_path, why)->stamp();
  const auto before = m_directory.names();
  EXPECT_THAT(save(full, "the newest file\n"), HasSubstr(": cannot be written: No space left on device"));
  EXPECT_EQ(readFile(m_path), "the newer file\n");
  EXPECT_EQ(m_directory.names(), before);
}

// On a real disk that is too small, where this process may mount one.
TEST_F(FullDisk, IsToldByTheSystemAndByAPreview) {
  const std::string mountPoint = m_directory.file("disk");
  std::filesystem::create_directory(mountPoint);
  const auto end = inChild([&]() -> std::string {
    const std::string options = "size=" + std::to_string(kDiskSize);
    if (::unshare(CLONE_NEWNS) != 0 || ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        ::mount("none", mountPoint.c_str(), "tmpfs", 0, options.c_str()) != 0) {
      return "not permitted";
    }
    m_path = mountPoint + "/config";
    test::writeFile(m_path, "the old file\n");
    std::string why;
    m_source = {m_path, m_path, SourceText::read(m_path, why)->stamp(), std::nullopt};
    const std::string large(kDiskSize, 'x');
    CountingFileSystem files;
    const std::string preview = check(files, large);
    const std::string told = save(files, large);
    if (files.writes != 0) return "something was written";
    if (readFile(m_path) != "the old file\n") return "the old file has gone";
    for (const auto& entry : std::filesystem::directory_iterator(mountPoint)) {
      if (entry.path().filename() != "config") return "there is " + entry.path().string();
    }
    const std::string fits(kDiskSize / 4, 'x');
    if (check(files, fits) != "fine" || save(files, fits) != "saved") return "it would have fitted";
    return preview == told ? told : preview + " but " + told;
  });
  if (end.text == "not permitted") GTEST_SKIP() << "no disk can be mounted for the test";
  EXPECT_EQ(end.text, mountPoint + "/config: cannot be written: No space left on device");
}

}  // namespace
}  // namespace cfgstore
