#include "TraceScope.h"

namespace cfgmig {

TraceScope::TraceScope(const TracedMethod& method) : m_method(method) {
  const MethodClass& words = method.methodClass;
  if ((trcEvents & words.entryEvents) != 0) ldtr_write(words.entryRecord, method.identifier, nullptr);
}

TraceScope::~TraceScope() {
  const MethodClass& words = m_method.methodClass;
  if ((trcEvents & words.exitEvents) != 0) {
    ldtr_exit_errcode(m_method.identifier, words.exitClass, words.exitEvent, m_reported, nullptr);
  }
}

}  // namespace cfgmig
