// LockHolder.h -- who holds the lock of a file.

#ifndef CFGMIG_LIBCFGSTORE_LOCKHOLDER_H
#define CFGMIG_LIBCFGSTORE_LOCKHOLDER_H

#include <string>

namespace cfgstore {

inline constexpr const char* kBusy = "another program is writing this file";

// kBusy and, if the system tells, the process that holds the flock of the open file: "another program is writing this
// file: process 1234 (cfgmig), running since 2030-01-31 12:00:00".
// The system is asked rather than a note in a file, for a note outlives a program that is killed. It does not tell of
// a process in another container or on another machine.
std::string describeHolder(int file);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_LOCKHOLDER_H
