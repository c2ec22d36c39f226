// StoreResults.h -- owners of what the store hands out. Each is declared before the store call that fills it and
// releases what it holds when it goes out of scope, so that no path of a method, exceptions included, loses anything.

#ifndef CFGMIG_LIBCFGMIG_INTERNAL_STORERESULTS_H
#define CFGMIG_LIBCFGMIG_INTERNAL_STORERESULTS_H

#include <cstdlib>
#include <exception>
#include <memory>

#include "ConfigFile.h"

namespace cfgmig {

struct FreeBlock {
  void operator()(void* block) const { std::free(block); }
};

// An array of pointers from malloc; null when there is no memory for it. The strings it points at are not its own.
using PointerArray = std::unique_ptr<char*[], FreeBlock>;
PointerArray allocatePointers(int count);

// A single value.
class Text {
 public:
  Text() = default;
  ~Text() { std::free(m_text); }
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;

  char** out() { return &m_text; }  // for one store call on a fresh object
  char* get() const { return m_text; }

 private:
  char* m_text = nullptr;
};

// The list with which the library deletes: one value, closed by null. An absent value makes the list empty, and the
// store then deletes nothing.
class DeleteList {
 public:
  explicit DeleteList(char* value) : m_slots{value, nullptr} {}
  operator char**() { return m_slots; }

 private:
  char* m_slots[2];
};

// A value list, released through the freeParamVals of `owner`. It may be filled again after release(); what is then
// left of the first filling is an empty list, not a null one, which makes a difference to freeParamVals: it reports
// a list that was never filled. For the same reason a list is released at the end of every normal path, filled or
// not, while nothing is reported as long as an exception passes.
class ValueList {
 public:
  explicit ValueList(ConfigFile& owner) : m_owner(owner), m_exceptions(std::uncaught_exceptions()) {}
  ~ValueList();
  ValueList(const ValueList&) = delete;
  ValueList& operator=(const ValueList&) = delete;

  // For one store call. The array of an earlier filling stays where it is until the store overwrites it.
  char*** out() { return &m_values; }
  int* countOut() {
    m_count = 0;
    return &m_count;
  }

  int count() const { return m_values == nullptr ? 0 : m_count; }
  char* operator[](int i) const { return m_values[i]; }

  void release() { m_owner.freeParamVals(m_values); }

  // The end of a path that does not call freeParamVals for a list that was not filled.
  void endSilently();

 private:
  ConfigFile& m_owner;
  int m_exceptions;
  char** m_values = nullptr;
  int m_count = 0;
  bool m_silent = false;
};

// A list whose strings and array are all freed, without freeParamVals: the DNs of the inventory, and the object
// classes of an entry to be added.
class WholeList {
 public:
  WholeList() = default;
  ~WholeList() { release(); }
  WholeList(const WholeList&) = delete;
  WholeList& operator=(const WholeList&) = delete;

  char*** out() { return &m_values; }
  int* countOut() { return &m_count; }
  int count() const { return m_values == nullptr ? 0 : m_count; }
  char* operator[](int i) const { return m_values[i]; }

  void release();

 private:
  char** m_values = nullptr;
  int m_count = 0;
};

// An entry that was looked up.
class EntryHandle {
 public:
  EntryHandle() = default;
  ~EntryHandle() { close(); }
  EntryHandle(const EntryHandle&) = delete;
  EntryHandle& operator=(const EntryHandle&) = delete;

  int open(OVOConfigUtils::CfgUtils& store, const char* dn) { return store.getFirstEntry(dn, &m_entry); }
  _CFGMessage* get() const { return m_entry; }
  void close();

 private:
  _CFGMessage* m_entry = nullptr;
};

// One walk over the attributes of an entry: the entry's handle, the cursor and the current attribute's name. Released
// in the order cursor, handle, name.
class AttributeWalk {
 public:
  explicit AttributeWalk(OVOConfigUtils::CfgUtils& store) : m_store(store) {}
  ~AttributeWalk();
  AttributeWalk(const AttributeWalk&) = delete;
  AttributeWalk& operator=(const AttributeWalk&) = delete;

  // Each returns the store's code. first() and next() set the name; null ends the walk.
  int open(const char* dn) { return m_entry.open(m_store, dn); }
  int first() { return m_store.getFirstAttribute(m_entry.get(), &m_name, &m_cursor); }
  int next();

  char* name() const { return m_name; }

  void closeCursor();
  void closeEntry() { m_entry.close(); }

 private:
  OVOConfigUtils::CfgUtils& m_store;
  EntryHandle m_entry;
  _CFGMessage** m_cursor = nullptr;
  char* m_name = nullptr;
};

}  // namespace cfgmig

#endif  // CFGMIG_LIBCFGMIG_INTERNAL_STORERESULTS_H
