// FileFunctions.cpp -- the two file functions of CfgUtils.h.

#include <sys/stat.h>

#include "CfgUtils.h"
#include "FileCopy.h"
#include "FileStaging.h"
#include "NewFile.h"

namespace {

// Whatever the caller asks for: schema files are nobody else's to read, and nobody's to execute.
constexpr int kMostPermissions = 0660;

}  // namespace

int doesFileExist(const char* path) {
  struct stat status {};
  return path != nullptr && ::stat(path, &status) == 0 && !S_ISDIR(status.st_mode) ? 1 : 0;
}

int copyFile(const char* source, const char* destination, char* /*text*/, int /*reserved*/, int permissions) {
  if (source == nullptr || destination == nullptr) return 0;
  const auto mode = static_cast<mode_t>(permissions & kMostPermissions);
  if (cfgstore::FileStaging* const staging = cfgstore::FileStaging::active()) {
    return staging->stage(source, destination, mode) ? 1 : 0;
  }
  try {
    cfgstore::FileCopy(cfgstore::FileSystem::real(), source, destination, mode).run();
    return 1;
  } catch (const cfgstore::FileError&) {
    return 0;
  }
}
