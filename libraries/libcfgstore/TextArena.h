// TextArena.h -- text at addresses that do not change: what was written anew, what was decoded, normal forms of DNs.

#ifndef CFGMIG_LIBCFGSTORE_TEXTARENA_H
#define CFGMIG_LIBCFGSTORE_TEXTARENA_H

#include <cstring>
#include <memory>
#include <memory_resource>
#include <string_view>

namespace cfgstore {

// Moving it hands its texts over where they are.
class TextArena {
 public:
  // A copy of `text`, valid as long as the arena or the one that it was moved to.
  std::string_view keep(std::string_view text) {
    if (text.empty()) return "";
    if (!m_memory) m_memory = std::make_unique<std::pmr::monotonic_buffer_resource>();
    char* const copy = static_cast<char*>(m_memory->allocate(text.size(), 1));
    std::memcpy(copy, text.data(), text.size());
    return {copy, text.size()};
  }

 private:
  std::unique_ptr<std::pmr::monotonic_buffer_resource> m_memory;  // none before the first text
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_TEXTARENA_H
