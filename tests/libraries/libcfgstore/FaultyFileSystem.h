// FaultyFileSystem.h -- the real file system, but for the one call that is made to fail, or to be the last.

#ifndef CFGMIG_TESTS_LIBCFGSTORE_FAULTYFILESYSTEM_H
#define CFGMIG_TESTS_LIBCFGSTORE_FAULTYFILESYSTEM_H

#include <sys/stat.h>

#include <cerrno>
#include <csignal>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "FileSystem.h"

namespace cfgstore::test {

class FaultyFileSystem : public FileSystem {
 public:
  // Makes the call with this number, counted from 1, fail. The other calls are made.
  void failCall(int number, int error) {
    m_failAt = number;
    m_error = error;
  }
  // Makes every call from this number on fail, as they do for a program that is killed at that point.
  void stopAt(int number) { m_stopAt = number; }
  // Ends the process with SIGKILL immediately before the call with this number. Between two calls nothing happens that
  // lasts, so this is as well immediately after the call before it.
  void killBefore(int number) { m_killAt = number; }
  // Makes every call of this name fail, and of those that were named before.
  void failAll(std::string name, int error) {
    m_failNames.insert(std::move(name));
    m_error = error;
  }
  // Writes and reads a byte at a time.
  void shorten() { m_short = true; }
  // Writes other bytes than those asked for.
  void corrupt() { m_corrupt = true; }
  // Calls `action` before the call of this name.
  void before(std::string name, std::function<void()> action) {
    m_beforeName = std::move(name);
    m_action = std::move(action);
  }

  bool hasFailed() const { return !m_failedCall.empty(); }
  const std::string& failedCall() const { return m_failedCall; }  // number and name
  int calls() const { return m_calls; }
  // What lasts was made in this order: "write", "sync file", "rename", "link", "unlink", "sync directory"; the same
  // several times in a row is there once.
  const std::vector<std::string>& order() const { return m_order; }
  int openFiles() const { return m_openFiles; }

  int open(const char* path, int flags, mode_t mode) override {
    if (fails("open")) return -1;
    const int file = m_real.open(path, flags, mode);
    if (file >= 0) ++m_openFiles;
    return file;
  }
  // A file is closed even when close reports an error.
  int close(int file) override {
    --m_openFiles;
    const int rc = m_real.close(file);
    return fails("close") ? -1 : rc;
  }
  ssize_t pread(int file, void* to, std::size_t size, off_t offset) override {
    return fails("pread") ? -1 : m_real.pread(file, to, shortened(size), offset);
  }
  ssize_t write(int file, const void* from, std::size_t size) override {
    if (fails("write")) return -1;
    note("write");
    const std::string other(shortened(size), '?');
    return m_real.write(file, m_corrupt ? other.data() : from, other.size());
  }
  // Does not wait for the disk: what these tests look at is what the system shows, and they save thousands of times.
  int fsync(int file) override {
    struct stat status {};
    if (fails("fsync")) return -1;
    const int rc = m_real.fstat(file, &status);
    note(rc == 0 && S_ISDIR(status.st_mode) ? "sync directory" : "sync file");
    return rc;
  }
  int fstat(int file, struct stat* status) override { return fails("fstat") ? -1 : m_real.fstat(file, status); }
  int lstat(const char* path, struct stat* status) override { return fails("lstat") ? -1 : m_real.lstat(path, status); }
  int fchmod(int file, mode_t mode) override { return fails("fchmod") ? -1 : m_real.fchmod(file, mode); }
  int fchown(int file, uid_t owner, gid_t group) override {
    return fails("fchown") ? -1 : m_real.fchown(file, owner, group);
  }
  int flock(int file, int operation) override { return fails("flock") ? -1 : m_real.flock(file, operation); }
  int rename(const char* from, const char* to) override {
    return fails("rename") ? -1 : (note("rename"), m_real.rename(from, to));
  }
  int renameNoReplace(const char* from, const char* to) override {
    return fails("renameNoReplace") ? -1 : (note("rename"), m_real.renameNoReplace(from, to));
  }
  int link(const char* from, const char* to) override {
    return fails("link") ? -1 : (note("link"), m_real.link(from, to));
  }
  int unlink(const char* path) override { return fails("unlink") ? -1 : (note("unlink"), m_real.unlink(path)); }
  int access(const char* path, int mode) override { return fails("access") ? -1 : m_real.access(path, mode); }
  int statvfs(const char* path, struct statvfs* status) override {
    return fails("statvfs") ? -1 : m_real.statvfs(path, status);
  }
  int fallocate(int file, off_t size) override { return fails("fallocate") ? -1 : m_real.fallocate(file, size); }
  ssize_t flistxattr(int file, char* to, std::size_t size) override {
    return fails("flistxattr") ? -1 : m_real.flistxattr(file, to, size);
  }
  ssize_t fgetxattr(int file, const char* name, void* to, std::size_t size) override {
    return fails("fgetxattr") ? -1 : m_real.fgetxattr(file, name, to, size);
  }
  int fsetxattr(int file, const char* name, const void* from, std::size_t size) override {
    return fails("fsetxattr") ? -1 : m_real.fsetxattr(file, name, from, size);
  }
  int fremovexattr(int file, const char* name) override {
    return fails("fremovexattr") ? -1 : m_real.fremovexattr(file, name);
  }
  int realpath(const char* path, std::string& resolved) override {
    return fails("realpath") ? -1 : m_real.realpath(path, resolved);
  }

 private:
  bool fails(const char* name) {
    if (++m_calls == m_killAt) ::raise(SIGKILL);
    if (m_action && m_beforeName == name) std::exchange(m_action, {})();
    const bool stopped = m_stopAt != 0 && m_calls >= m_stopAt;
    if (!stopped && m_calls != m_failAt && m_failNames.count(name) == 0) return false;
    if (m_failedCall.empty()) m_failedCall = "call " + std::to_string(m_calls) + ", " + name;
    errno = stopped ? EIO : m_error;
    return true;
  }
  void note(const char* what) {
    if (m_order.empty() || m_order.back() != what) m_order.emplace_back(what);
  }
  std::size_t shortened(std::size_t size) const { return m_short && size > 1 ? 1 : size; }

  FileSystem& m_real = FileSystem::real();
  int m_calls = 0;
  int m_failAt = 0;
  int m_stopAt = 0;
  int m_killAt = 0;
  int m_error = EIO;
  std::set<std::string> m_failNames;
  bool m_short = false;
  bool m_corrupt = false;
  std::vector<std::string> m_order;
  std::string m_beforeName;
  std::function<void()> m_action;
  std::string m_failedCall;
  int m_openFiles = 0;
};

}  // namespace cfgstore::test

#endif  // CFGMIG_TESTS_LIBCFGSTORE_FAULTYFILESYSTEM_H
