#include "StoreResults.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

namespace cfgstore {

char* newString(std::string_view text) {
  char* const copy = static_cast<char*>(std::malloc(text.size() + 1));
  if (copy == nullptr) throw std::bad_alloc();
  if (!text.empty()) std::memcpy(copy, text.data(), text.size());
  copy[text.size()] = '\0';
  return copy;
}

__attribute__((noinline, weak)) char** newListBlock(std::size_t slots) {
  char** const block = static_cast<char**>(std::malloc(slots * sizeof(char*)));
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

ListBuilder::~ListBuilder() {
  for (char* text : m_strings) std::free(text);
}

void ListBuilder::add(std::string_view text) {
  if (m_strings.size() == static_cast<std::size_t>(std::numeric_limits<int>::max())) throw std::bad_alloc();
  m_strings.push_back(nullptr);
  m_strings.back() = newString(text);
}

void ListBuilder::handOver(char*** list, int* count) {
  char** const block = newListBlock(m_strings.size() + 1);
  if (!m_strings.empty()) std::memcpy(block, m_strings.data(), m_strings.size() * sizeof(char*));
  block[m_strings.size()] = nullptr;
  *list = block;
  *count = static_cast<int>(m_strings.size());
  m_strings.clear();
}

}  // namespace cfgstore
