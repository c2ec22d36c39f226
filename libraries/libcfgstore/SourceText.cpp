#include "SourceText.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "AccessList.h"
#include "Descriptor.h"
#include "FileAttributes.h"
#include "FileError.h"
#include "LargeMemory.h"
#include "PipeReader.h"

namespace cfgstore {
namespace {

constexpr std::size_t kFirstPipeBlock = std::size_t{1} << 16;

// Reads until `wanted` bytes are there or the file ends; the number of bytes, or -1 with errno set.
ssize_t readFully(int descriptor, char* to, std::size_t wanted) {
  std::size_t done = 0;
  while (done < wanted) {
    const ssize_t got = ::read(descriptor, to + done, wanted - done);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return -1;
    if (got == 0) break;
    done += static_cast<std::size_t>(got);
  }
  return static_cast<ssize_t>(done);
}

bool isSameTime(const timespec& left, const timespec& right) {
  return left.tv_sec == right.tv_sec && left.tv_nsec == right.tv_nsec;
}

std::string describe(const char* what, int error) { return std::string(what) + ": " + std::strerror(error); }

std::string beyond(std::size_t limit) {
  return "more than the limit of " + std::to_string(limit) + " bytes; " + kFileSizeVariable + " in the environment " +
         "can raise it";
}

const char* describeKind(mode_t mode) {
  if (S_ISDIR(mode)) return "is a directory; expected an LDIF file";
  return "is not a regular file; expected an LDIF file";
}

}  // namespace

FileStamp FileStamp::of(const struct stat& status, std::string_view accessList) {
  FileStamp stamp{status.st_dev, status.st_ino, status.st_size, status.st_mtim, status.st_ctim};
  stamp.mode = plainMode(status.st_mode & 07777, accessList);
  stamp.group = status.st_gid;
  return stamp;
}

bool FileStamp::isUnchanged(const FileStamp& other) const {
  return isSameFile(other) && size == other.size && isSameTime(modified, other.modified);
}

bool FileStamp::isUntouched(const FileStamp& other) const {
  return isUnchanged(other) && isSameTime(changed, other.changed);
}

SourceText::SourceText(std::string_view text) : SourceText(std::span(&text, 1)) {}

SourceText::SourceText(std::span<const std::string_view> pieces) {
  for (const std::string_view piece : pieces) m_size += piece.size();
  m_bytes = std::make_unique_for_overwrite<char[]>(m_size);
  askForLargePages(m_bytes.get(), m_size);
  char* to = m_bytes.get();
  for (const std::string_view piece : pieces) to = std::copy(piece.begin(), piece.end(), to);
}

std::optional<SourceText> SourceText::read(const std::string& path, std::string& why) {
  Problem problem;
  auto source = read(path, problem);
  if (!source) why = std::move(problem.text);
  return source;
}

std::optional<SourceText> SourceText::read(const std::string& path, Problem& why) {
  const auto refused = [&](RemarkKind kind, std::string reason) {
    why = {0, std::move(reason), kind};
    return std::nullopt;
  };
  const auto failed = [&](std::string reason) { return refused(RemarkKind::unreadable, std::move(reason)); };
  std::size_t mostBytes = 0;
  try {
    mostBytes = static_cast<std::size_t>(std::min<std::uint64_t>(limits().fileSize, PTRDIFF_MAX - 1));
  } catch (const std::runtime_error& error) {
    return failed(error.what());
  }
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
  if (!file) return failed(describe("cannot be opened", errno));
  struct stat before {};
  if (::fstat(file.get(), &before) != 0) return failed(describe("cannot be examined", errno));
  const bool isPipe = S_ISFIFO(before.st_mode);
  if (!S_ISREG(before.st_mode) && !isPipe) return failed(describeKind(before.st_mode));

  if (!isPipe && static_cast<std::uint64_t>(before.st_size) > mostBytes) {
    return refused(RemarkKind::fileTooLarge, "has " + std::to_string(before.st_size) + " bytes, " + beyond(mostBytes));
  }

  SourceText source;
  PipeReader pipe(file.get());
  try {
    FileSystem& files = FileSystem::real();
    source.m_stamp = FileStamp::of(before, extendedAttribute(files, file.get(), kAccessListAttribute));
  } catch (const FileError& error) {
    return failed(error.what());
  }
  // One byte more than the file has, so that a file that grows is noticed.
  std::size_t room = isPipe ? std::min(kFirstPipeBlock, mostBytes + 1) : static_cast<std::size_t>(before.st_size) + 1;
  source.m_bytes = std::make_unique_for_overwrite<char[]>(room);
  askForLargePages(source.m_bytes.get(), room);
  while (true) {
    char* const to = source.m_bytes.get() + source.m_size;
    const std::size_t wanted = room - source.m_size;
    const ssize_t got = isPipe ? pipe.read(to, wanted) : readFully(file.get(), to, wanted);
    if (got == PipeReader::kNoWriter) return failed("is a pipe to which no program writes");
    if (got < 0) return failed(describe("cannot be read", errno));
    source.m_size += static_cast<std::size_t>(got);
    if (source.m_size < room || !isPipe) break;
    if (source.m_size > mostBytes) return refused(RemarkKind::fileTooLarge, "goes on, " + beyond(mostBytes));
    room = std::min(room * 2, mostBytes + 1);
    auto larger = std::make_unique_for_overwrite<char[]>(room);
    std::memcpy(larger.get(), source.m_bytes.get(), source.m_size);
    source.m_bytes = std::move(larger);
  }
  if (isPipe) return source;

  struct stat after {};
  if (::fstat(file.get(), &after) != 0) return failed(describe("cannot be examined", errno));
  if (source.m_size != static_cast<std::size_t>(before.st_size) || !source.m_stamp.isUnchanged(FileStamp::of(after))) {
    return failed("was changed by another program while it was read");
  }
  const std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(path.c_str(), nullptr), &std::free);
  if (resolved) source.m_resolvedPath = resolved.get();
  return source;
}

}  // namespace cfgstore
