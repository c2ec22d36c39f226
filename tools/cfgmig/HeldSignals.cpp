#include "HeldSignals.h"

#include <pthread.h>

#include <algorithm>
#include <csignal>
#include <iterator>

namespace tool {
namespace {

constexpr int kHeld[] = {SIGINT, SIGTERM, SIGHUP};

}  // namespace

bool HeldSignals::isOneWaiting() {
  sigset_t waiting;
  ::sigemptyset(&waiting);
  ::sigpending(&waiting);
  return std::any_of(std::begin(kHeld), std::end(kHeld),
                     [&](int signal) { return ::sigismember(&waiting, signal) == 1; });
}

HeldSignals::HeldSignals() {
  sigset_t held;
  ::sigemptyset(&held);
  for (const int signal : kHeld) ::sigaddset(&held, signal);
  ::pthread_sigmask(SIG_BLOCK, &held, &m_before);
}

HeldSignals::~HeldSignals() { ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }

}  // namespace tool
