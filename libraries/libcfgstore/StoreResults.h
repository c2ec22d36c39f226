// StoreResults.h -- makes the strings and lists that the store hands to its callers.

#ifndef CFGMIG_LIBCFGSTORE_STORERESULTS_H
#define CFGMIG_LIBCFGSTORE_STORERESULTS_H

#include <cstddef>
#include <string_view>
#include <vector>

namespace cfgstore {

// A heap copy of `text`, to be released with free(). Throws std::bad_alloc.
char* newString(std::string_view text);

// A heap block with room for `slots` pointers and no more. Callers may keep it for the rest of the process and never
// release it: the strings of a list are what they must release. A function of its own, so that a leak checker can be
// told to overlook exactly these blocks; weak, so that a program that has the store in itself may keep account of them
// with one of its own. Throws std::bad_alloc.
char** newListBlock(std::size_t slots);

// A list that is being put together; released again unless it is handed over.
class ListBuilder {
 public:
  ListBuilder() = default;
  ~ListBuilder();
  ListBuilder(const ListBuilder&) = delete;
  ListBuilder& operator=(const ListBuilder&) = delete;

  // Makes room for so many, in one step.
  void expect(std::size_t count) { m_strings.reserve(count); }

  void add(std::string_view text);

  // Hands the list over: a block closed by a null slot, and the number of strings in it.
  void handOver(char*** list, int* count);

 private:
  std::vector<char*> m_strings;
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_STORERESULTS_H
