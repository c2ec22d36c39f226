#include "Sinks.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <mutex>
#include <utility>

namespace ldtr {
namespace {

// A file that is open for appending. Standard error is written to but never closed.
class TextFile {
 public:
  TextFile(int descriptor, bool owned) : m_descriptor(descriptor), m_owned(owned) {}
  ~TextFile() {
    if (m_owned) ::close(m_descriptor);
  }
  TextFile(const TextFile&) = delete;
  TextFile& operator=(const TextFile&) = delete;

  // Writes `text` whole in one call where the system takes it whole, which keeps the lines of two threads or two
  // processes apart. What cannot be written is given up, and remembered as a failure.
  void write(std::string_view text) const {
    while (!text.empty()) {
      const ssize_t written = ::write(m_descriptor, text.data(), text.size());
      if (written < 0 && errno == EINTR) continue;
      if (written <= 0) return fail(written < 0 ? errno : EIO);
      text.remove_prefix(static_cast<std::size_t>(written));
    }
  }

  void fail(int error) const {
    int none = 0;
    m_error.compare_exchange_strong(none, error);
  }

  int error() const { return m_error; }

 private:
  int m_descriptor;
  bool m_owned;
  mutable std::atomic<int> m_error{0};  // why the first record that was given up could not be written
};

// Where records go. Each of the members may be empty; text and function are never both set.
struct Sinks {
  std::shared_ptr<const TextFile> text;
  std::uint32_t textMask = kEverything;
  std::shared_ptr<const Sink> function;
  std::shared_ptr<const Sink> secondFunction;
};

// The sinks of this process. A record is delivered to a copy taken under the lock, so that a sink is free to trace or
// to change the sinks while it runs, and stays alive until it returns.
class Registry {
 public:
  Sinks current() {
    const std::lock_guard lock(m_mutex);
    return m_sinks;
  }

  // The sinks that were there before are released after the lock, because closing one may run a program's code.
  template <class Change>
  void change(Change&& apply) {
    Sinks before;
    {
      const std::lock_guard lock(m_mutex);
      before = m_sinks;
      apply(m_sinks);
    }
  }

 private:
  std::mutex m_mutex;
  Sinks m_sinks;
};

// Never destroyed: a program's static objects may trace while they are destroyed.
Registry& registry() {
  static Registry& instance = *new Registry;
  return instance;
}

std::shared_ptr<const Sink> shared(Sink sink) { return sink ? std::make_shared<const Sink>(std::move(sink)) : nullptr; }

// One sink's failure keeps nothing from the others.
void call(const std::shared_ptr<const Sink>& sink, const Record& record) noexcept {
  try {
    if (sink) (*sink)(record);
  } catch (...) {  // a record is lost rather than the caller's work
  }
}

void write(const Sinks& sinks, const Record& record) noexcept {
  if (!sinks.text || (record.events & sinks.textMask) == 0) return;
  try {
    sinks.text->write(textLine(record) + '\n');
  } catch (...) {  // no memory for the line
    sinks.text->fail(ENOMEM);
  }
}

}  // namespace

void discard() {
  registry().change([](Sinks& sinks) { sinks = Sinks{}; });
}

bool writeTextTo(const std::string& path, std::uint32_t mask) {
  const bool toStandardError = path == "-";
  const int descriptor = toStandardError
                             ? STDERR_FILENO
                             : ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY, 0600);
  if (descriptor < 0) return false;
  auto file = std::make_shared<const TextFile>(descriptor, !toStandardError);
  registry().change([&](Sinks& sinks) {
    sinks.text = std::move(file);
    sinks.textMask = mask;
    sinks.function = nullptr;
  });
  return true;
}

int textError() {
  const Sinks sinks = registry().current();
  return sinks.text ? sinks.text->error() : 0;
}

void sendTo(Sink sink) {
  registry().change([function = shared(std::move(sink))](Sinks& sinks) {
    sinks.text = nullptr;
    sinks.function = function;
  });
}

void sendAlsoTo(Sink sink) {
  registry().change([function = shared(std::move(sink))](Sinks& sinks) { sinks.secondFunction = function; });
}

namespace internal {

void deliver(Record record) noexcept {
  const int savedErrno = errno;
  try {
    char unknown[2 + 2 * sizeof(record.identifier) + 1] = "";
    if (const char* known = methodName(record.identifier)) {
      record.method = known;
    } else if (record.identifier != 0) {
      const int length = std::snprintf(unknown, sizeof unknown, "0x%lx", record.identifier);
      record.method = std::string_view(unknown, static_cast<std::size_t>(length));
    }
    const Sinks sinks = registry().current();
    write(sinks, record);
    call(sinks.function, record);
    call(sinks.secondFunction, record);
  } catch (...) {  // the lock or the registry could not be had
  }
  errno = savedErrno;
}

}  // namespace internal
}  // namespace ldtr
