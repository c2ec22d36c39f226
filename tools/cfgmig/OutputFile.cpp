#include "OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <ostream>

#include "Descriptor.h"
#include "Failure.h"
#include "FilePlacement.h"
#include "NewFile.h"
#include "PrintableText.h"
#include "SameFile.h"

namespace tool {
namespace {

constexpr mode_t kOwnerOnly = 0600;
constexpr mode_t kOfOthers = 077;

// A file that held the text already was not written anew, and may be open to others.
void closeToOthers(const std::string& path) {
  const cfgstore::Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
  struct stat status {};
  if (file && ::fstat(file.get(), &status) == 0) {
    if ((status.st_mode & kOfOthers) == 0 || ::fchmod(file.get(), kOwnerOnly) == 0) return;
  }
  const std::string why = std::strerror(errno);
  throw Failure(ExitStatus::failed, ldtr::printable(path) + ": cannot be made readable by its owner only: " + why);
}

}  // namespace

void refuseNoTarget(const std::string& path) {
  if (path.empty()) return;
  if (const std::string why = whyNoTarget(path); !why.empty()) {
    throw Failure(ExitStatus::failed, ldtr::printable(path) + ": cannot be written: " + why);
  }
}

void writeOwnFile(const std::string& path, std::string_view text, Console& console) {
  cfgstore::FilePlacement file(cfgstore::FileSystem::real(), path, kOwnerOnly);
  const auto failure = [&](ExitStatus status, const std::exception& error) {
    return Failure(status, ldtr::printable(path) + ": " + ldtr::printable(error.what()));
  };
  try {
    file.place(text, std::time(nullptr));
  } catch (const cfgstore::FileNotRestored& error) {
    throw failure(ExitStatus::notUndone, error);
  } catch (const cfgstore::FileInUse& error) {
    throw failure(ExitStatus::blocked, error);
  } catch (const cfgstore::FileError& error) {
    throw failure(ExitStatus::failed, error);
  }
  closeToOthers(path);
  if (!file.backupPath().empty()) console.err << "cfgmig: kept: " << ldtr::printable(file.backupPath()) << '\n';
}

}  // namespace tool
