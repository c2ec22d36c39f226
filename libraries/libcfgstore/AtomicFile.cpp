#include "AtomicFile.h"

#include <cerrno>
#include <utility>

#include "AccessList.h"
#include "Replacement.h"
#include "SaveErrors.h"

namespace cfgstore {
namespace {

constexpr const char* kChanged = "was changed by another program since it was read";

std::size_t sizeOf(std::span<const std::string_view> pieces) {
  std::size_t size = 0;
  for (const std::string_view piece : pieces) size += piece.size();
  return size;
}

}  // namespace

AtomicFile::AtomicFile(FileSystem& fileSystem, std::string target, const SourceFile& source)
    : m_fileSystem(fileSystem), m_target(std::move(target)), m_source(source) {}

SavedFile AtomicFile::save(std::span<const std::string_view> pieces, Backup backup, std::time_t now,
                           mode_t permissions) {
  prepare(pieces, now, permissions);
  return finish(backup, now);
}

void AtomicFile::prepare(std::span<const std::string_view> pieces, std::time_t now, mode_t permissions) {
  asSaveErrors(m_target, [&] { prepareLocked(pieces, now, permissions); });
}

SavedFile AtomicFile::finish(Backup backup, std::time_t now) {
  if (m_file) asSaveErrors(m_target, [&] { putInPlace(backup, now); });
  m_file.reset();
  m_locked.reset();
  return std::move(m_saved);
}

bool AtomicFile::check(std::span<const std::string_view> pieces, mode_t permissions) const {
  return asSaveErrors(m_target, [&] {
    const TargetFile target(m_fileSystem, m_target, Access::look);
    if (!isWanted(target, pieces)) return false;
    refuse(target);
    FileAttributes attributes = target.exists() ? target.attributes() : FileAttributes{};
    attributes.limit(permissions);
    target.foresee(sizeOf(pieces), attributes);
    return true;
  });
}

void AtomicFile::prepareLocked(std::span<const std::string_view> pieces, std::time_t now, mode_t permissions) {
  const TargetFile& target = m_locked.emplace(m_fileSystem, m_target, Access::write);
  m_saved.isSource = isSource(target);
  if (!isWanted(target, pieces)) {
    m_saved.result.recoveredPath = m_locked->clearLeftovers(now);
    const std::string list = extendedAttribute(m_fileSystem, target.file(), kAccessListAttribute);
    m_saved.stamp = FileStamp::of(target.status(), list);
    return;
  }
  refuse(target);
  m_saved.result.recoveredPath = m_locked->clearLeftovers(now);

  FileAttributes attributes = target.exists() ? target.attributes() : FileAttributes{};
  NewFile& file = m_file.emplace(m_fileSystem, besideName(target.path(), "new"));
  if (!target.exists()) attributes.mode = modeOfNew(file);
  attributes.limit(permissions);
  file.make(pieces, attributes);
  m_accessList = std::move(attributes.accessList);
}

void AtomicFile::putInPlace(Backup backup, std::time_t now) {
  const TargetFile& target = *m_locked;
  if (target.exists()) {
    target.checkUntouched();
    m_saved.result.backupPath = replaceFile(m_fileSystem, *m_file, target.path(), backup, now, [&] {
      if (m_saved.isSource) refuseOtherContent(target);
      target.checkUnchanged();
    });
  } else {
    createFile(m_fileSystem, *m_file, target.path());
  }

  struct stat status {};
  if (m_fileSystem.fstat(m_file->file(), &status) == 0) m_saved.stamp = FileStamp::of(status, m_accessList);
  m_saved.result.written = true;
}

bool AtomicFile::isSource(const TargetFile& target) const {
  if (m_target == m_source.path || target.path() == m_source.resolved) return true;
  return target.exists() && FileStamp::of(target.status()).isSameFile(m_source.stamp);
}

bool AtomicFile::isWanted(const TargetFile& target, std::span<const std::string_view> pieces) const {
  if (!target.exists() || static_cast<std::size_t>(target.status().st_size) != sizeOf(pieces)) return true;
  return !holdsContent(m_fileSystem, target.file(), pieces);
}

// Everything that can be known before a file is made.
void AtomicFile::refuse(const TargetFile& target) const {
  if (isSource(target)) {
    if (!target.exists()) throw FileInUse("was removed by another program since it was read");
    const FileStamp now = FileStamp::of(target.status());
    if (!now.isUnchanged(m_source.stamp)) throw FileInUse(kChanged);
    // The time of the last change cannot be set back, unlike that of the last modification, but it changes with the
    // permissions and the names of a file as well.
    if (!now.isUntouched(m_source.stamp)) {
      if (!m_source.text) throw FileInUse(kChanged);
      refuseOtherContent(target);
    }
  }
  target.refuseHardLinks();
  target.checkNames();
  target.checkDirectory();
}

void AtomicFile::refuseOtherContent(const TargetFile& target) const {
  if (m_source.text && !holdsContent(m_fileSystem, target.file(), {&*m_source.text, 1})) throw FileInUse(kChanged);
}

// A new file gets the permissions of the file that was read, so that nobody may read it who may not read that one: for
// a group that is not the same there is no access, and whoever was in that group is one of the others now.
mode_t AtomicFile::modeOfNew(const NewFile& file) const {
  const mode_t mode = m_source.stamp.mode & 0777;
  struct stat status {};
  if (m_fileSystem.fstat(file.file(), &status) == 0 && status.st_gid == m_source.stamp.group) return mode;
  return (mode & 0700) | (mode & mode >> 3 & 07);
}

}  // namespace cfgstore
