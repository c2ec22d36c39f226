// LargeHeap.h -- room for the many small pieces of memory that go with a large configuration.
//
// As it comes, the allocator takes memory from the system in small steps, for each thread in a place of its own, and
// the system clears it page by page of 4 KiB when it is touched: with 100,000 entries a tenth of the time.

#ifndef CFGMIG_TOOL_LARGEHEAP_H
#define CFGMIG_TOOL_LARGEHEAP_H

#include <cstdint>

namespace tool {

// To be called before threads are started, with the size of all files that are going to be read. If it is large, room
// for what goes with them is asked for in one piece, in large pages, and for all threads. Room that is never used takes
// no memory; where there is none to be had, everything is as it was. The first large call counts.
void makeRoomFor(std::uint64_t bytes);

}  // namespace tool

#endif  // CFGMIG_TOOL_LARGEHEAP_H
