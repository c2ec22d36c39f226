// TextArena.h -- text that lives as long as the document: what was written anew, and normal forms of DNs.

#ifndef CFGMIG_LIBCFGSTORE_TEXTARENA_H
#define CFGMIG_LIBCFGSTORE_TEXTARENA_H

#include <cstring>
#include <memory_resource>
#include <string_view>

namespace cfgstore {

class TextArena {
 public:
  // A copy of `text` at an address that never changes.
  std::string_view keep(std::string_view text) {
    if (text.empty()) return "";
    char* const copy = static_cast<char*>(m_memory.allocate(text.size(), 1));
    std::memcpy(copy, text.data(), text.size());
    return {copy, text.size()};
  }

 private:
  std::pmr::monotonic_buffer_resource m_memory;
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_TEXTARENA_H
