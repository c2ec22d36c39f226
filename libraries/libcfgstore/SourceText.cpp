#include "SourceText.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "Descriptor.h"

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

std::string describe(const char* what, int error) { return std::string(what) + ": " + std::strerror(error); }

const char* describeKind(mode_t mode) {
  if (S_ISDIR(mode)) return "is a directory; expected an LDIF file";
  return "is not a regular file; expected an LDIF file";
}

}  // namespace

FileStamp FileStamp::of(const struct stat& status) {
  return {status.st_dev, status.st_ino, status.st_size, status.st_mtim, status.st_mode & 07777, status.st_gid};
}

bool FileStamp::isUnchanged(const FileStamp& other) const {
  return isSameFile(other) && size == other.size && modified.tv_sec == other.modified.tv_sec &&
         modified.tv_nsec == other.modified.tv_nsec;
}

SourceText::SourceText(std::string_view text)
    : m_bytes(std::make_unique_for_overwrite<char[]>(text.size())), m_size(text.size()) {
  if (!text.empty()) std::memcpy(m_bytes.get(), text.data(), text.size());
}

std::optional<SourceText> SourceText::read(const std::string& path, std::string& why) {
  const auto failed = [&](std::string reason) {
    why = std::move(reason);
    return std::nullopt;
  };
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
  if (!file) return failed(describe("cannot be opened", errno));
  struct stat before {};
  if (::fstat(file.get(), &before) != 0) return failed(describe("cannot be examined", errno));
  const bool isPipe = S_ISFIFO(before.st_mode);
  if (!S_ISREG(before.st_mode) && !isPipe) return failed(describeKind(before.st_mode));

  SourceText source;
  source.m_stamp = FileStamp::of(before);
  // One byte more than the file has, so that a file that grows is noticed.
  std::size_t room = isPipe ? kFirstPipeBlock : static_cast<std::size_t>(before.st_size) + 1;
  source.m_bytes = std::make_unique_for_overwrite<char[]>(room);
  while (true) {
    const ssize_t got = readFully(file.get(), source.m_bytes.get() + source.m_size, room - source.m_size);
    if (got < 0) return failed(describe("cannot be read", errno));
    source.m_size += static_cast<std::size_t>(got);
    if (source.m_size < room || !isPipe) break;
    auto larger = std::make_unique_for_overwrite<char[]>(room * 2);
    std::memcpy(larger.get(), source.m_bytes.get(), source.m_size);
    source.m_bytes = std::move(larger);
    room *= 2;
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
