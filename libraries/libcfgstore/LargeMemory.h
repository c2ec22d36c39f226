// LargeMemory.h -- fewer page faults in memory of many megabytes.
//
// Memory is handed out by the system in pages of 4 KiB when they are first touched, one fault for each: with a file of
// 100 MB that is a fifth of the time. Where the system has larger pages, and gives them to whoever asks, a fault comes
// once in 2 MiB.

#ifndef CFGMIG_LIBCFGSTORE_LARGEMEMORY_H
#define CFGMIG_LIBCFGSTORE_LARGEMEMORY_H

#include <cstddef>
#include <cstdint>

namespace cfgstore {

// Asks for large pages for memory that has not been touched yet. It changes nothing that can be seen but the time, and
// nothing at all where the memory is small or the system has no such pages. errno stays.
void askForLargePages(void* memory, std::size_t bytes) noexcept;

// Makes room in a vector that is empty, for elements that are all going to be used.
template <class Vector>
void reserveLarge(Vector& vector, std::size_t count) {
  vector.reserve(count);
  askForLargePages(vector.data(), vector.capacity() * sizeof(typename Vector::value_type));
}

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_LARGEMEMORY_H
