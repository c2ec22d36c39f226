#include "HeldSignals.h"

#include <pthread.h>

#include <csignal>
#include <initializer_list>

namespace tool {

HeldSignals::HeldSignals() {
  sigset_t held;
  ::sigemptyset(&held);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) ::sigaddset(&held, signal);
  ::pthread_sigmask(SIG_BLOCK, &held, &m_before);
}

HeldSignals::~HeldSignals() { ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }

}  // namespace tool
