// ListBlocks.cpp -- keeps account of the array blocks, in a program built with the address sanitizer: the function of
// the store that makes them is replaced by the one here, and the sanitizer tells of each block that is freed.

#include "ListBlocks.h"

#include <sanitizer/allocator_interface.h>

#include <cstdlib>
#include <new>
#include <unordered_set>

#include "StoreResults.h"

namespace {

std::unordered_set<const volatile void*>& outstanding() {
  static std::unordered_set<const volatile void*> blocks;
  return blocks;
}

bool isBusy = false;  // the account's own memory is not accounted for

void freed(const volatile void* block) {
  if (isBusy) return;
  isBusy = true;
  outstanding().erase(block);
  isBusy = false;
}

void allocated(const volatile void*, std::size_t) {}

}  // namespace

namespace cfgstore {

char** newListBlock(std::size_t slots) {
  static const int installed = __sanitizer_install_malloc_and_free_hooks(allocated, freed);
  auto* const block = static_cast<char**>(std::malloc(slots * sizeof(char*)));
  if (block == nullptr || installed == 0) throw std::bad_alloc();
  isBusy = true;
  outstanding().insert(block);
  isBusy = false;
  return block;
}

}  // namespace cfgstore

namespace fuzz {

void releaseListBlocks() {
  isBusy = true;
  for (const volatile void* block : outstanding()) std::free(const_cast<void*>(block));
  outstanding() = {};
  isBusy = false;
}

}  // namespace fuzz
