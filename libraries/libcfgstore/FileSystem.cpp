#include "FileSystem.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace cfgstore {
namespace {

class RealFileSystem : public FileSystem {
 public:
  int open(const char* path, int flags, mode_t mode) override { return ::open(path, flags, mode); }
  int close(int file) override { return ::close(file); }
  ssize_t read(int file, void* to, std::size_t size) override { return ::read(file, to, size); }
  ssize_t pread(int file, void* to, std::size_t size, off_t offset) override { return ::pread(file, to, size, offset); }
  ssize_t write(int file, const void* from, std::size_t size) override { return ::write(file, from, size); }
  int fsync(int file) override { return ::fsync(file); }
  int fstat(int file, struct stat* status) override { return ::fstat(file, status); }
  int lstat(const char* path, struct stat* status) override { return ::lstat(path, status); }
  int fchmod(int file, mode_t mode) override { return ::fchmod(file, mode); }
  int fchown(int file, uid_t owner, gid_t group) override { return ::fchown(file, owner, group); }
  int flock(int file, int operation) override { return ::flock(file, operation); }
  int rename(const char* from, const char* to) override { return ::rename(from, to); }
  int renameNoReplace(const char* from, const char* to) override {
    return ::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE);
  }
  int link(const char* from, const char* to) override { return ::linkat(AT_FDCWD, from, AT_FDCWD, to, 0); }
  int unlink(const char* path) override { return ::unlink(path); }

  int realpath(const char* path, std::string& resolved) override {
    const std::unique_ptr<char, decltype(&std::free)> found(::realpath(path, nullptr), &std::free);
    if (!found) return -1;
    resolved = found.get();
    return 0;
  }
};

}  // namespace

FileSystem& FileSystem::real() {
  static RealFileSystem fileSystem;
  return fileSystem;
}

}  // namespace cfgstore
