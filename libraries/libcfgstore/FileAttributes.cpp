#include "FileAttributes.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <string_view>

#include "AccessList.h"
#include "FileError.h"

namespace cfgstore {
namespace {

constexpr mode_t kPermissions = 07777;

constexpr std::string_view kNotCarried[] = {
    kAccessListAttribute,   // carried, but in a way of its own
    kUnfinishedMark,        //
    "security.capability",  // a right of the program that the content was
    "security.ima",         // digest and signature of the content
    "security.evm",         // and of the file as a whole
};

bool isCarried(std::string_view name) {
  return std::find(std::begin(kNotCarried), std::end(kNotCarried), name) == std::end(kNotCarried);
}

// Calls `read(buffer, size)` with a buffer that is large enough. Returns what was read, or nothing with errno set.
template <class Read>
std::optional<std::string> readAnySize(const Read& read) {
  while (true) {
    const ssize_t size = read(nullptr, 0);
    if (size < 0) return std::nullopt;
    if (size == 0) return std::string();
    std::string bytes(static_cast<std::size_t>(size), '\0');
    const ssize_t got = read(bytes.data(), bytes.size());
    if (got < 0 && errno == ERANGE) continue;  // it has grown in between
    if (got < 0) return std::nullopt;
    bytes.resize(static_cast<std::size_t>(got));
    return bytes;
  }
}

std::optional<std::string> readAttribute(FileSystem& fileSystem, int file, const char* name) {
  auto value = readAnySize([&](char* to, std::size_t size) { return fileSystem.fgetxattr(file, name, to, size); });
  if (!value && errno != ENODATA && !hasNoAttributes(errno)) {
    throw FileError(std::string("its attribute ") + name + " cannot be read", errno);
  }
  return value;
}

}  // namespace

bool hasNoAttributes(int error) { return error == EOPNOTSUPP || error == ENOSYS; }

std::string extendedAttribute(FileSystem& fileSystem, int file, const char* name) {
  return readAttribute(fileSystem, file, name).value_or("");
}

FileAttributes FileAttributes::of(FileSystem& fileSystem, int file) {
  struct stat status {};
  if (fileSystem.fstat(file, &status) != 0) throw FileError("cannot be examined", errno);
  FileAttributes attributes;
  attributes.owner = FileOwner{status.st_uid, status.st_gid};
  attributes.mode = status.st_mode & kPermissions;
  attributes.accessList = extendedAttribute(fileSystem, file, kAccessListAttribute);

  const auto names = readAnySize([&](char* to, std::size_t size) { return fileSystem.flistxattr(file, to, size); });
  if (!names) {
    if (hasNoAttributes(errno)) return attributes;
    throw FileError("its attributes cannot be listed", errno);
  }
  for (std::size_t at = 0; at < names->size();) {
    const std::string name = names->c_str() + at;
    at += name.size() + 1;
    if (!isCarried(name)) continue;
    // One that is gone by now is not missed.
    if (auto value = readAttribute(fileSystem, file, name.c_str())) {
      attributes.extended.push_back({name, std::move(*value)});
    }
  }
  return attributes;
}

void FileAttributes::limit(mode_t permissions) {
  if ((permissions & 0777) == 0777) {
    mode &= permissions;
    return;
  }
  if (!accessList.empty()) {
    accessList = limitedList(accessList, permissions);
    mode = (mode & ~mode_t{0777}) | modeOfList(accessList);
  }
  mode &= permissions;
  std::erase_if(extended, [](const ExtendedAttribute& attribute) { return attribute.isOfSystem(); });
}

}  // namespace cfgstore
