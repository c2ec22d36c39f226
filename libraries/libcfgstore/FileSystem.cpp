#include "FileSystem.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/xattr.h>
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
  int access(const char* path, int mode) override { return ::faccessat(AT_FDCWD, path, mode, AT_EACCESS); }
  int statvfs(const char* path, struct statvfs* status) override { return ::statvfs(path, status); }
  int fallocate(int file, off_t size) override { return ::fallocate(file, 0, 0, size); }
  ssize_t flistxattr(int file, char* to, std::size_t size) override { return ::flistxattr(file, to, size); }
  ssize_t fgetxattr(int file, const char* name, void* to, std::size_t size) override {
    return ::fgetxattr(file, name, to, size);
  }
  int fsetxattr(int file, const char* name, const void* from, std::size_t size) override {
    return ::fsetxattr(file, name, from, size, 0);
  }
  int fremovexattr(int file, const char* name) override { return ::fremovexattr(file, name); }

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
