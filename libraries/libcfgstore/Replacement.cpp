#include "Replacement.h"

#include <fcntl.h>

#include <cerrno>
#include <exception>

#include "OldFile.h"

namespace cfgstore {
namespace {

constexpr const char* kInPlace = "; the new file is in place all the same";

class Directory {
 public:
  Directory(FileSystem& fileSystem, const std::string& path)
      : m_fileSystem(fileSystem),
        m_file(fileSystem, fileSystem.open(directoryOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0)) {
    if (!m_file) throw FileError("its directory cannot be opened", errno);
  }

  void sync() const {
    int rc = 0;
    do rc = m_fileSystem.fsync(m_file.get());
    while (rc != 0 && errno == EINTR);
    if (rc != 0) throw FileError("its directory cannot be brought to the disk", errno);
  }

 private:
  FileSystem& m_fileSystem;
  OpenFile m_file;
};

// The new file is in place, and something has failed.
void putBack(OldFile& old, const Directory& directory, const char* why) {
  if (!old.isAside()) throw FileNotRestored(std::string(why) + kInPlace);
  old.putBack();
  try {
    directory.sync();
  } catch (const FileError&) {
    return;  // it is back, and on the disk sooner or later
  }
}

}  // namespace

std::string replaceFile(FileSystem& fileSystem, NewFile& file, const std::string& path, Backup backup, std::time_t now,
                        const std::function<void()>& lastCheck) {
  const Directory directory(fileSystem, path);
  OldFile old(fileSystem, path);
  try {
    if (!old.setAside() && backup == Backup::keep) old.copyAside();
    lastCheck();
    file.replace(path);
  } catch (...) {
    if (old.isAside()) fileSystem.unlink(old.secondName().c_str());
    throw;
  }
  try {
    if (old.isAside() && backup == Backup::keep) old.keepBackup(now);
    directory.sync();
    std::string backupPath = old.backupPath();
    if (old.isAside() && backup == Backup::none) old.drop();
    return backupPath;
  } catch (const std::exception& error) {
    putBack(old, directory, error.what());
    throw;
  }
}

void createFile(FileSystem& fileSystem, NewFile& file, const std::string& path) {
  const Directory directory(fileSystem, path);
  file.placeNew(path);
  try {
    directory.sync();
  } catch (const std::exception& error) {
    if (fileSystem.unlink(path.c_str()) != 0 && errno != ENOENT) {
      throw FileNotRestored(std::string(error.what()) + kInPlace);
    }
    throw;
  }
}

void syncDirectoryOf(FileSystem& fileSystem, const std::string& path) { Directory(fileSystem, path).sync(); }

}  // namespace cfgstore
