#include "FileLock.h"

#include <sys/file.h>

#include <cerrno>
#include <chrono>
#include <thread>

#include "FileError.h"
#include "LockHolder.h"

namespace cfgstore {
namespace {

constexpr int kMostTries = 5;
constexpr std::chrono::milliseconds kBetweenTries{10};

}  // namespace

void lockFile(FileSystem& fileSystem, int file, Access access) {
  const int operation = (access == Access::look ? LOCK_SH : LOCK_EX) | LOCK_NB;
  for (int tries = 1; fileSystem.flock(file, operation) != 0; ++tries) {
    if (errno != EWOULDBLOCK) throw FileError("cannot be locked", errno);
    if (tries == kMostTries) throw FileInUse(describeHolder(file));
    std::this_thread::sleep_for(kBetweenTries);
  }
  if (access == Access::look && fileSystem.flock(file, LOCK_UN) != 0) throw FileError("cannot be unlocked", errno);
}

}  // namespace cfgstore
