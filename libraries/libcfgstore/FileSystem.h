// FileSystem.h -- the system calls that writing a file safely needs, so that tests can make each of them fail.

#ifndef CFGMIG_LIBCFGSTORE_FILESYSTEM_H
#define CFGMIG_LIBCFGSTORE_FILESYSTEM_H

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/types.h>

#include <cstddef>
#include <string>

namespace cfgstore {

// Each call does what the system call of its name does, with the same results and errno.
class FileSystem {
 public:
  virtual ~FileSystem() = default;

  virtual int open(const char* path, int flags, mode_t mode) = 0;
  virtual int close(int file) = 0;
  virtual ssize_t pread(int file, void* to, std::size_t size, off_t offset) = 0;
  virtual ssize_t write(int file, const void* from, std::size_t size) = 0;
  virtual int fsync(int file) = 0;
  virtual int fstat(int file, struct stat* status) = 0;
  virtual int lstat(const char* path, struct stat* status) = 0;
  virtual int fchmod(int file, mode_t mode) = 0;
  virtual int fchown(int file, uid_t owner, gid_t group) = 0;
  virtual int flock(int file, int operation) = 0;
  virtual int rename(const char* from, const char* to) = 0;
  virtual int renameNoReplace(const char* from, const char* to) = 0;  // EEXIST if `to` exists
  virtual int link(const char* from, const char* to) = 0;             // does not follow symbolic links
  virtual int unlink(const char* path) = 0;
  virtual int access(const char* path, int mode) = 0;  // with the rights of the effective user
  virtual int statvfs(const char* path, struct statvfs* status) = 0;
  virtual int fallocate(int file, off_t size) = 0;  // makes room for a file of `size` bytes; may change its size
  virtual ssize_t flistxattr(int file, char* to, std::size_t size) = 0;
  virtual ssize_t fgetxattr(int file, const char* name, void* to, std::size_t size) = 0;
  virtual int fsetxattr(int file, const char* name, const void* from, std::size_t size) = 0;
  virtual int fremovexattr(int file, const char* name) = 0;
  // The resolved path, as a string; -1 and errno on failure.
  virtual int realpath(const char* path, std::string& resolved) = 0;
  // The one that really calls the system.
  static FileSystem& real();
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_FILESYSTEM_H
