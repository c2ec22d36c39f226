// ReportFile.cpp -- a report in a file of its own.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ostream>
#include <streambuf>

#include "Descriptor.h"
#include "Failure.h"
#include "PrintableText.h"
#include "report/Report.h"

namespace tool {
namespace {

constexpr mode_t kOwnerOnly = 0600;
constexpr std::size_t kMarkWithin = 512;  // bytes from the beginning in which kReportMark stands in every format

[[noreturn]] void fail(const std::string& path, const std::string& why) {
  throw Failure(ExitStatus::failed, ldtr::printable(path) + ": the report cannot be written: " + why);
}

std::string why(int error) { return std::strerror(error); }

// Writes to a file descriptor, and remembers the first error.
class DescriptorBuffer : public std::streambuf {
 public:
  explicit DescriptorBuffer(int descriptor) : m_descriptor(descriptor) {
    setp(m_buffer.data(), m_buffer.data() + m_buffer.size());
  }

  int error() const { return m_error; }

 protected:
  int_type overflow(int_type character) override {
    if (sync() != 0) return traits_type::eof();
    const bool isNone = traits_type::eq_int_type(character, traits_type::eof());
    return isNone ? traits_type::not_eof(character) : sputc(traits_type::to_char_type(character));
  }
  int sync() override {
    for (const char* from = pbase(); from < pptr() && m_error == 0;) {
      const ssize_t written = ::write(m_descriptor, from, static_cast<std::size_t>(pptr() - from));
      if (written >= 0) {
        from += written;
      } else if (errno != EINTR) {
        m_error = errno;
      }
    }
    setp(m_buffer.data(), m_buffer.data() + m_buffer.size());
    return m_error == 0 ? 0 : -1;
  }

 private:
  int m_descriptor;
  int m_error = 0;
  std::array<char, 1U << 16U> m_buffer{};
};

// Writes and flushes. Returns 0 or the error.
int writeTo(int descriptor, const Report& report, Format format) {
  DescriptorBuffer buffer(descriptor);
  std::ostream out(&buffer);
  writeReport(report, format, out);
  out.flush();
  return buffer.error() != 0 ? buffer.error() : out.good() ? 0 : EIO;
}

// The file that is written until it is whole; it goes with the object unless it was put in place.
class Draft {
 public:
  explicit Draft(const std::string& target) : m_target(target), m_path(target + ".cfgmig-XXXXXX") {
    m_descriptor = ::mkostemp(m_path.data(), O_CLOEXEC);  // which gives it the mode 0600
    if (m_descriptor < 0) fail(target, why(errno));
  }
  ~Draft() {
    ::close(m_descriptor);
    if (!m_isInPlace) ::unlink(m_path.c_str());
  }
  Draft(const Draft&) = delete;
  Draft& operator=(const Draft&) = delete;

  int descriptor() const { return m_descriptor; }

  void putInPlace() {
    if (::fchmod(m_descriptor, kOwnerOnly) != 0 || ::fsync(m_descriptor) != 0) fail(m_target, why(errno));
    if (::rename(m_path.c_str(), m_target.c_str()) != 0) fail(m_target, why(errno));
    m_isInPlace = true;
  }

 private:
  std::string m_target;
  std::string m_path;
  int m_descriptor = -1;
  bool m_isInPlace = false;
};

// Whether the open file is empty or begins as every report does.
bool isReplaceable(int file) {
  std::array<char, kMarkWithin> beginning{};
  const ssize_t size = ::pread(file, beginning.data(), beginning.size(), 0);
  if (size <= 0) return size == 0;
  const std::string_view text(beginning.data(), static_cast<std::size_t>(size));
  return text.find(kReportMark) != std::string_view::npos;
}

// A link is followed, so that the file is replaced and not the link. A name that leads nowhere is as good as it is.
std::string resolved(const std::string& path) {
  char* const real = ::realpath(path.c_str(), nullptr);
  if (real == nullptr) return path;
  std::string text = real;
  std::free(real);
  return text;
}

}  // namespace

void refuseForeignFile(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return;
  const cfgstore::Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file) fail(path, why(errno));
  if (!isReplaceable(file.get())) fail(path, "there is a file that is no report of cfgmig; remove it first");
}

void saveReport(const Report& report, Format format, const std::string& path) {
  struct stat status {};
  const bool exists = ::stat(path.c_str(), &status) == 0;
  if (exists && S_ISDIR(status.st_mode)) fail(path, why(EISDIR));
  if (exists && !S_ISREG(status.st_mode)) {
    const cfgstore::Descriptor file(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    if (!file) fail(path, why(errno));
    if (const int error = writeTo(file.get(), report, format); error != 0) fail(path, why(error));
    return;
  }
  refuseForeignFile(path);
  Draft draft(resolved(path));
  if (const int error = writeTo(draft.descriptor(), report, format); error != 0) fail(path, why(error));
  draft.putInPlace();
}

}  // namespace tool
