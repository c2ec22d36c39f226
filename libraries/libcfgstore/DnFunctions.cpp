// DnFunctions.cpp -- the two DN functions of CfgUtils.h.

#include <cstdlib>
#include <cstring>
#include <new>

#include "CfgUtils.h"
#include "NormalDn.h"

char* formatDn(const char* dn) {
  if (dn == nullptr) return nullptr;
  try {
    const auto normal = cfgstore::normalDn(dn);
    if (!normal) return nullptr;
    auto* const copy = static_cast<char*>(std::malloc(normal->size() + 1));
    if (copy != nullptr) std::memcpy(copy, normal->c_str(), normal->size() + 1);
    return copy;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

// Lets std::bad_alloc through: a 0 for want of memory would say that two names differ that may be the same. Plain
// DNs need no memory.
int compareDns(const char* left, const char* right) {
  if (left == nullptr || right == nullptr) return 0;
  return cfgstore::sameDn(left, right) ? 1 : 0;
}
