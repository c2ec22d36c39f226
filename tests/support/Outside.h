// Outside.h -- where the program is, seen from the library under test: inside it, or outside in the fakes that it
// calls. A test that makes the library's allocations fail leaves those of its surroundings alone.

#ifndef CFGMIG_TESTS_SUPPORT_OUTSIDE_H
#define CFGMIG_TESTS_SUPPORT_OUTSIDE_H

namespace fake {

inline int g_insideLibrary = 0;  // more than 0: a test is calling the library
inline int g_insideFake = 0;     // more than 0: the library is calling a fake

// True but for the time that the library itself runs under an InsideLibrary.
inline bool isOutsideLibrary() { return g_insideLibrary == 0 || g_insideFake != 0; }

// Held by the test while it calls the library.
struct InsideLibrary {
  InsideLibrary() { ++g_insideLibrary; }
  ~InsideLibrary() { --g_insideLibrary; }
  InsideLibrary(const InsideLibrary&) = delete;
  InsideLibrary& operator=(const InsideLibrary&) = delete;
};

// Held by the fakes while they work.
struct OutsideLibrary {
  OutsideLibrary() { ++g_insideFake; }
  ~OutsideLibrary() { --g_insideFake; }
  OutsideLibrary(const OutsideLibrary&) = delete;
  OutsideLibrary& operator=(const OutsideLibrary&) = delete;
};

}  // namespace fake

#endif  // CFGMIG_TESTS_SUPPORT_OUTSIDE_H
