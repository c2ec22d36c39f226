// The heap as the tests' build of the library sees it: linked with --wrap, the library calls these functions where it
// says malloc, free and their like. The test program itself does not.

#include <cstdlib>
#include <cstring>

#include "Outside.h"
#include "World.h"

namespace {

// Null when the World says so; otherwise the block, entered in the account.
template <class Allocate>
auto allocated(std::size_t size, Allocate allocate) -> decltype(allocate()) {
  const fake::OutsideLibrary outside;
  fake::World& world = fake::World::current();
  if (world.allocationFails(size)) {
    return nullptr;
  }
  auto block = allocate();
  world.resources().allocatedByLibrary(block);
  return block;
}

}  // namespace

extern "C" {

void* __wrap_malloc(std::size_t size);
void* __wrap_calloc(std::size_t number, std::size_t size);
char* __wrap_strdup(const char* text);
void __wrap_free(void* block);

void* __wrap_malloc(std::size_t size) {
  return allocated(size, [size] { return std::malloc(size); });
}

void* __wrap_calloc(std::size_t number, std::size_t size) {
  return allocated(number * size, [number, size] { return std::calloc(number, size); });
}

char* __wrap_strdup(const char* text) {
  return allocated(std::strlen(text) + 1, [text] { return ::strdup(text); });
}

void __wrap_free(void* block) {
  const fake::OutsideLibrary outside;
  fake::World::current().resources().freed(block);
}

}  // extern "C"
