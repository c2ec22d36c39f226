#include "SameFile.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <optional>
#include <system_error>

namespace tool {
namespace {

namespace fs = std::filesystem;

std::optional<struct stat> statusOf(const fs::path& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return std::nullopt;
  return status;
}

bool isSameStatus(const struct stat& left, const struct stat& right) {
  return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

// Where a path leads; a symbolic link is followed also when nothing is at its end yet.
fs::path target(fs::path path) {
  constexpr int kMostLinks = 40;  // as many as the system follows
  std::error_code error;
  for (int links = 0; links < kMostLinks && fs::is_symlink(fs::symlink_status(path, error)); ++links) {
    const fs::path next = fs::read_symlink(path, error);
    if (error) break;
    path = next.is_absolute() ? next : path.parent_path() / next;
  }
  return path;
}

fs::path directoryOf(const fs::path& path) { return path.has_parent_path() ? path.parent_path() : fs::path("."); }

}  // namespace

bool isSameFile(const std::string& left, const std::string& right) {
  const auto leftStatus = statusOf(left);
  const auto rightStatus = statusOf(right);
  if (leftStatus && rightStatus) return isSameStatus(*leftStatus, *rightStatus);
  if (leftStatus || rightStatus) return false;

  const fs::path leftTarget = target(left);
  const fs::path rightTarget = target(right);
  if (leftTarget.filename() != rightTarget.filename()) return false;
  const auto leftDirectory = statusOf(directoryOf(leftTarget));
  const auto rightDirectory = statusOf(directoryOf(rightTarget));
  return leftDirectory && rightDirectory && isSameStatus(*leftDirectory, *rightDirectory);
}

std::string whyNoTarget(const std::string& path) {
  if (const auto status = statusOf(path)) {
    if (S_ISDIR(status->st_mode)) return "it is a directory";
    return S_ISREG(status->st_mode) ? "" : "it is not a regular file";
  }
  const fs::path followed = target(path);
  if (!followed.has_filename()) return "it has no file name";
  const auto directory = statusOf(directoryOf(followed));
  if (!directory) return std::string("its directory: ") + std::strerror(errno);
  return S_ISDIR(directory->st_mode) ? "" : "its directory is not one";
}

}  // namespace tool
