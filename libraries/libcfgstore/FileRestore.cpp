#include "FileRestore.h"

#include <fcntl.h>

#include <cerrno>
#include <optional>
#include <utility>

#include "NewFile.h"
#include "Replacement.h"
#include "SaveErrors.h"
#include "SourceText.h"
#include "TargetFile.h"
#include "WholeFile.h"

namespace cfgstore {
namespace {

struct BackupFile {
  std::string content;
  FileAttributes attributes;
};

BackupFile read(FileSystem& fileSystem, const std::string& path) {
  const int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  const OpenFile file(fileSystem, fileSystem.open(path.c_str(), flags, 0));
  const std::string name = "the backup " + path;
  if (!file) throw FileError(name + " cannot be opened", errno);
  struct stat before {};
  struct stat after {};
  if (fileSystem.fstat(file.get(), &before) != 0) throw FileError(name + " cannot be examined", errno);
  if (!S_ISREG(before.st_mode)) throw FileError(name + " is not a regular file");
  BackupFile backup{readWhole(fileSystem, file.get()), FileAttributes::of(fileSystem, file.get())};
  if (fileSystem.fstat(file.get(), &after) != 0) throw FileError(name + " cannot be examined", errno);
  if (!FileStamp::of(before).isUntouched(FileStamp::of(after))) throw FileInUse(name + " is being changed");
  return backup;
}

bool isSame(const FileAttributes& left, const FileAttributes& right) {
  const auto isSameOwner = [](const FileOwner& a, const FileOwner& b) {
    return a.user == b.user && a.group == b.group;
  };
  if (left.mode != right.mode || left.accessList != right.accessList || left.extended.size() != right.extended.size()) {
    return false;
  }
  for (std::size_t i = 0; i < left.extended.size(); ++i) {
    const ExtendedAttribute& a = left.extended[i];
    const ExtendedAttribute& b = right.extended[i];
    if (a.name != b.name || a.value != b.value) return false;
  }
  return left.owner && right.owner && isSameOwner(*left.owner, *right.owner);
}

void refuseUnexpected(FileSystem& fileSystem, const TargetFile& target, const IsExpected& isExpected) {
  if (!target.exists()) return;
  if (!isExpected(readWhole(fileSystem, target.file())))
    throw FileInUse("is no longer the file that is to be taken back");
}

bool isRestored(FileSystem& fileSystem, const TargetFile& target, const BackupFile& backup) {
  if (!target.exists()) return false;
  const std::string_view pieces[] = {backup.content};
  return holdsContent(fileSystem, target.file(), pieces) && isSame(target.attributes(), backup.attributes);
}

void refuse(FileSystem& fileSystem, const TargetFile& target, const IsExpected& isExpected) {
  refuseUnexpected(fileSystem, target, isExpected);
  target.refuseHardLinks();
  target.checkNames();
  target.checkDirectory();
}

}  // namespace

SaveResult restoreFile(const std::string& target, const std::string& backup, const IsExpected& isExpected, Backup keep,
                       FileSystem& fileSystem, std::time_t now) {
  return asSaveErrors(target, [&] {
    TargetFile there(fileSystem, target, Access::write);
    const BackupFile old = read(fileSystem, backup);
    SaveResult result;
    if (isRestored(fileSystem, there, old)) {
      result.recoveredPath = there.clearLeftovers(now);
      return result;
    }
    refuse(fileSystem, there, isExpected);
    result.recoveredPath = there.clearLeftovers(now);

    NewFile file(fileSystem, besideName(there.path(), "new"));
    const std::string_view pieces[] = {old.content};
    file.make(pieces, old.attributes);
    if (there.exists()) {
      there.checkUntouched();
      result.backupPath = replaceFile(fileSystem, file, there.path(), keep, now, [&] {
        refuseUnexpected(fileSystem, there, isExpected);
        there.checkUnchanged();
      });
    } else {
      createFile(fileSystem, file, there.path());
    }
    result.written = true;
    return result;
  });
}

bool removeFile(const std::string& target, const IsExpected& isExpected, FileSystem& fileSystem) {
  return asSaveErrors(target, [&] {
    TargetFile there(fileSystem, target, Access::write);
    if (!there.exists()) return false;
    refuse(fileSystem, there, isExpected);
    there.clearLeftovers(std::time(nullptr));
    there.checkUntouched();
    refuseUnexpected(fileSystem, there, isExpected);
    if (fileSystem.unlink(there.path().c_str()) != 0) throw FileError("cannot be removed", errno);
    try {
      syncDirectoryOf(fileSystem, there.path());
    } catch (const FileError&) {
      return true;  // it is gone, on the disk sooner or later
    }
    return true;
  });
}

void checkRestore(const std::string& target, const std::string& backup, const IsExpected& isExpected,
                  FileSystem& fileSystem) {
  asSaveErrors(target, [&] {
    const TargetFile there(fileSystem, target, Access::look);
    std::optional<BackupFile> old;
    if (!backup.empty()) old = read(fileSystem, backup);
    if (old && isRestored(fileSystem, there, *old)) return;
    refuse(fileSystem, there, isExpected);
    if (old) there.foresee(old->content.size(), old->attributes);
  });
}

}  // namespace cfgstore
