// TraceScope.h -- the trace records of one call of a method.

#ifndef CFGMIG_LIBCFGMIG_INTERNAL_TRACESCOPE_H
#define CFGMIG_LIBCFGMIG_INTERNAL_TRACESCOPE_H

#include "Message.h"
#include "TracedMethods.h"
#include "ldtr.h"

namespace cfgmig {

inline constexpr std::uint32_t kDebugEvents = 0x4000000;
inline constexpr unsigned long kDebugRecord = 0x3400000;

inline constexpr unsigned long kFailureClass = 0xc8110000;      // the class word of nearly all messages
inline constexpr unsigned long kInformationClass = 0xc8010000;  // what was found and what was not
inline constexpr unsigned long kArgumentClass = 0xc80c0000;     // an argument that is no use

inline bool debugIsOn() { return (trcEvents & kDebugEvents) != 0; }

// Writes the entry record when made and the exit record when it goes out of scope, on every return and on every
// exception. To be declared first in a method, so that everything else is released before the exit record.
// The mask is read afresh for every record.
class TraceScope {
 public:
  explicit TraceScope(const TracedMethod& method);
  ~TraceScope();
  TraceScope(const TraceScope&) = delete;
  TraceScope& operator=(const TraceScope&) = delete;

  // Every return of a traced method goes through one of these two. The exit record carries what `result` was last
  // given, and 0 when it was given nothing.
  int result(int value) {
    m_reported = value;
    return value;
  }
  int unreported(int value) const { return value; }

  // Writes a debug message. The formatter is built only if the debug bit is set.
  template <class... Args>
  void debug(Message<Args...> message, Args... args) const {
    debugAs(kFailureClass, message, args...);
  }
  template <class... Args>
  void debugAs(unsigned long messageClass, Message<Args...> message, Args... args) const {
    if (!debugIsOn()) return;
    ldtr_formater_local formatter(m_method.identifier, kDebugRecord, nullptr);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"  // Message has checked the conversions
#pragma GCC diagnostic ignored "-Wformat-security"
    formatter.debug(messageClass, message.text(), args...);
#pragma GCC diagnostic pop
  }

 private:
  const TracedMethod& m_method;
  int m_reported = 0;
};

}  // namespace cfgmig

#endif  // CFGMIG_LIBCFGMIG_INTERNAL_TRACESCOPE_H
