#include "PipeReader.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>

namespace cfgstore {
namespace {

constexpr std::chrono::milliseconds kPatience{3000};

}  // namespace

// A pipe that no writer has opened since it was opened here is neither readable nor hung up. Waits a moment only, for
// a writer that has nothing to say yet shows in the next read.
void PipeReader::lookForWriter() {
  constexpr int kMoment = 50;  // milliseconds
  pollfd wait{m_pipe, POLLIN, 0};
  if (::poll(&wait, 1, kMoment) > 0) m_hadWriter = true;
}

ssize_t PipeReader::read(char* to, std::size_t wanted) {
  const auto patience = std::chrono::steady_clock::now() + kPatience;
  std::size_t done = 0;
  while (done < wanted) {
    const ssize_t got = ::read(m_pipe, to + done, wanted - done);
    if (got > 0) {
      m_hadWriter = true;
      done += static_cast<std::size_t>(got);
    } else if (got == 0) {
      if (m_hadWriter) break;
      if (std::chrono::steady_clock::now() > patience) return kNoWriter;
      lookForWriter();
    } else if (errno == EAGAIN) {
      m_hadWriter = true;
      pollfd wait{m_pipe, POLLIN, 0};
      ::poll(&wait, 1, -1);
    } else if (errno != EINTR) {
      return -1;
    }
  }
  return static_cast<ssize_t>(done);
}

}  // namespace cfgstore
