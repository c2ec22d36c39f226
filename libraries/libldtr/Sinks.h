// Sinks.h -- the way of one record to the sinks. For the facility's own code.

#ifndef CFGMIG_LIBLDTR_SINKS_H
#define CFGMIG_LIBLDTR_SINKS_H

#include "TraceControl.h"

namespace ldtr::internal {

// Hands `record` to the sinks that are set up at this moment, having filled in its method from its identifier.
// Never throws; errno stays as it was.
void deliver(Record record) noexcept;

}  // namespace ldtr::internal

#endif  // CFGMIG_LIBLDTR_SINKS_H
