// CfgUtils.h -- the configuration store that libcfgmig works on.
//
// libcfgmig never reads or writes a configuration file itself. It reads and changes entries through one store per
// file, the class OVOConfigUtils::CfgUtils, and a few free functions. This header is the whole contract between
// the two; a product links either the embedded store of this project (libraries/libcfgstore) or one of its own.
//
// What holds for every operation, unless its own comment says otherwise:
//
//   Results      Every member operation returns 0 for success and anything else for failure. Codes are LDAP result
//                codes where one fits. The library tests only for 0, and for 16 from getParamArrayValueInfo.
//                The free functions state their own sense; for three of them non-zero means yes.
//   Ownership    Every string, list, entry handle and attribute cursor that comes back through an out-parameter
//                belongs to the caller. Strings are heap strings to be released with free(); a value list is a
//                heap array of heap strings that is closed by a null slot, its count returned beside it, with no
//                null slot before the count.
//   Failure      After a failure every out-parameter holds null (counts hold 0) and the store is as it was.
//   Names        Attribute names are matched without regard to letter case. DNs are matched as compareDns does.
//   Exceptions   An operation may throw (out of memory); nothing is then handed out and nothing has changed.
//   Durability   Changes concern the content of the open store. The library has no save operation and calls none:
//                when changes reach the file is between the store and the program that linked it.
//   Threads      One store is used by one thread at a time. Several stores may be open side by side.

#ifndef CFGMIG_INTERFACES_CFGUTILS_H
#define CFGMIG_INTERFACES_CFGUTILS_H

// Key record for a store whose values are sealed. The library passes the pointer on and never looks inside; it
// stays the property of whoever constructs the ConfigFile.
struct aes_key_data;

// A pointer to it is the handle of an entry that was looked up; a pointer to such a pointer is the cursor of one
// walk over the entry's attributes. Only the store knows what is behind either.
struct _CFGMessage;

namespace OVOConfigUtils {

class CfgUtils {
 public:
  // What a store keeps for one open file; completed by the store that a product links.
  struct Implementation;

  // Opens the configuration file at `path`. `key` may be null if the store needs none.
  // Failure: may throw. A store that does not throw answers every later operation with a non-zero code.
  CfgUtils(const char* path, aes_key_data* key);

  // Closes the store and releases what it holds. Lists, strings, handles and cursors that were handed out stay
  // valid until their owner releases them.
  ~CfgUtils();

  CfgUtils(const CfgUtils&) = delete;
  CfgUtils& operator=(const CfgUtils&) = delete;

  // Lists the DNs of entries. `scope`: 0 the entry `baseDn` itself, 1 the entries directly below it, 2 all
  // entries below it at any depth. Whether scope 2 lists `baseDn` itself is the store's choice, and the same
  // choice for every file.
  // Success: 0; `*dns` is a value list of the DNs in the store's order, `*count` their number. The caller frees
  // the strings and then the array.
  int getSubordinates(const char* baseDn, int scope, char*** dns, int* count);

  // Reads one value of an attribute; of several, the first.
  // Success: 0; `*value` is a copy of the value, or null when the entry exists and has no such attribute.
  // Failure: the entry does not exist, or the store failed.
  int getParamValueInfo(const char* dn, const char* attribute, char** value);

  // Reads all values of an attribute.
  // Success: 0; `*values` is a value list, `*count` the number of values. The caller frees the strings; it may
  // free the array or leave it (libcfgmig leaves it on most of its paths), so a store hands out a block of its
  // own for each call and keeps it small.
  // Failure: exactly 16 when the entry exists and has no such attribute; another code when the entry does not
  // exist or the store failed.
  int getParamArrayValueInfo(const char* dn, const char* attribute, char*** values, int* count);

  // Adds one value to an attribute of an existing entry, creating the attribute if need be.
  // Success: 0; the value is present once. A value that was present already is a success and changes nothing.
  // Failure: `value` is null, the entry does not exist, or the store failed.
  int addValue(const char* dn, const char* attribute, const char* value);

  // Removes values from an attribute. `values` is closed by a null slot and stays the caller's.
  // Success: 0; none of the listed values remains, and an attribute that lost its last value is gone. A list
  // whose first slot is null removes nothing and is a success.
  // Failure: the attribute does not hold a listed value (its other values stay), the entry does not exist, or
  // the store failed.
  int delValue(const char* dn, const char* attribute, char** values);

  // Makes `value` the only value of an attribute of an existing entry, creating the attribute if need be.
  // Failure: `value` is null, the entry does not exist, or the store failed.
  int setValue(const char* dn, const char* attribute, const char* value);

  // Creates the entry `dn` with the naming value `cn` in "CN" and two values of "OBJECTCLASS".
  // Failure: the entry exists already, an argument is null or no DN, or the store failed.
  int addEntry(const char* dn, const char* cn, const char* objectClass, const char* secondObjectClass);

  // Removes the entry `dn`; entries below it stay.
  // Failure: there is no such entry, or the store failed.
  int removeEntry(const char* dn);

  // Looks an entry up.
  // Success: 0; `*entry` is a handle that the caller releases with cfg_msgfree.
  int getFirstEntry(const char* dn, _CFGMessage** entry);

  // Begins a walk over the attributes of `entry`. Writes to this store or another may happen during the walk.
  // Success: 0; `*attribute` is the name of the first attribute (null when the entry has none) and `*cursor` a
  // fresh cursor that the caller releases with cfg_ber_free, before it releases the entry.
  // Failure: `entry` is null, or the store failed.
  int getFirstAttribute(_CFGMessage* entry, char** attribute, _CFGMessage*** cursor);

  // Goes on with a walk. `cursor` is the one that getFirstAttribute gave for this `entry`.
  // Success: 0; `*attribute` is the next attribute's name, or null when the walk is over.
  // Failure: ends the walk; the cursor still has to be released.
  int getNextAttribute(_CFGMessage* entry, char** attribute, _CFGMessage** cursor);

 private:
  // The one data member, and no virtual function: ConfigFile holds its store by value, so the size and layout of
  // this class are part of the binary interface. With this pointer a product's own store can stand behind an
  // installed libcfgmig without recompiling it.
  Implementation* m_implementation;
};

}  // namespace OVOConfigUtils

// Returns a new heap string with `dn` in normal form, the form in which a ConfigFile keeps its inventory; the
// caller frees it. Null when `dn` is null or not a DN, or on any other failure.
char* formatDn(const char* dn);

// Non-zero when both DNs name the same entry, 0 otherwise, also when either is null or not a DN. It agrees with
// formatDn: two DNs name the same entry exactly when their normal forms are equal strings.
int compareDns(const char* left, const char* right);

// Non-zero when there is a file at `path`, 0 otherwise.
int doesFileExist(const char* path);

// Copies the file `source` to `destination`. `text` is passed through from the caller of
// ConfigFile::checkSchemaFiles and `reserved` is 0; their meaning is the store's. `permissions` are the permission
// bits of the copy (the library passes 0660).
// Non-zero on success, 0 on failure (the sense differs from the store operations).
int copyFile(const char* source, const char* destination, char* text, int reserved, int permissions);

// Releases an entry handle of getFirstEntry. Null is allowed.
void cfg_msgfree(_CFGMessage* entry);

// Releases an attribute cursor of getFirstAttribute. Null is allowed.
void cfg_ber_free(_CFGMessage** cursor);

#endif  // CFGMIG_INTERFACES_CFGUTILS_H
