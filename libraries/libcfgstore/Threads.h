// Threads.h -- work on large files that is done beside other work.

#ifndef CFGMIG_LIBCFGSTORE_THREADS_H
#define CFGMIG_LIBCFGSTORE_THREADS_H

#include <csignal>
#include <cstdint>
#include <future>
#include <system_error>
#include <utility>

namespace cfgstore {

// Threads begun while it lives take no signals: those are for the main thread, which may be holding them back.
class NoSignalsInThreads {
 public:
  NoSignalsInThreads() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &m_before);
  }
  ~NoSignalsInThreads() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
  NoSignalsInThreads(const NoSignalsInThreads&) = delete;
  NoSignalsInThreads& operator=(const NoSignalsInThreads&) = delete;

 private:
  sigset_t m_before{};
};

// Does `work`, which goes through so many bytes, in a thread of its own, if that takes far longer than starting one
// does and the system has one to give; otherwise when its result is asked for. What `work` throws comes with its
// result.
template <class Work>
auto doBeside(std::uint64_t bytes, Work work) {
  constexpr std::uint64_t kWorthAThread = std::uint64_t{1} << 20;
  if (bytes < kWorthAThread) return std::async(std::launch::deferred, std::move(work));
  try {
    const NoSignalsInThreads noSignals;
    return std::async(std::launch::async, work);
  } catch (const std::system_error&) {
    return std::async(std::launch::deferred, std::move(work));
  }
}

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_THREADS_H
