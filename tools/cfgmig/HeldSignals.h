// HeldSignals.h -- keeps a person's wish to stop waiting while something is done that must not be left half done.

#ifndef CFGMIG_TOOL_HELDSIGNALS_H
#define CFGMIG_TOOL_HELDSIGNALS_H

#include <csignal>

namespace tool {

// While an object of this class lives, SIGINT, SIGTERM and SIGHUP do not reach this thread. One that was sent
// meanwhile arrives when the last object goes. They may be nested.
class HeldSignals {
 public:
  HeldSignals();
  ~HeldSignals();
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;

  // Whether one of them has been sent meanwhile.
  static bool isOneWaiting();

 private:
  sigset_t m_before{};
};

}  // namespace tool

#endif  // CFGMIG_TOOL_HELDSIGNALS_H
