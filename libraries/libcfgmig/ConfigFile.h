// ConfigFile.h -- one server configuration file, and everything that carries its settings into another one.
//
// A migration tool opens the old and the new server's configuration as two ConfigFile objects, calls getDns on both,
// and then mergeConfigFiles on the new one:
//
//   ConfigFile oldConfig("/old/etc/server.conf", key), newConfig("/new/etc/server.conf", key);
//   if (oldConfig.getDns() != 0 || newConfig.getDns() != 0) ...
//   newConfig.mergeConfigFiles(&oldConfig, "6.0");
//
// What holds for all methods:
//
//   Failures     are reported in debug messages of the trace facility (ldtr.h) and, as a bare number, in the result.
//                No failure is fatal and nothing is rolled back. Each family of methods has its own sense of result.
//   Exceptions   The library throws nothing of its own. What the store or an allocation throws passes through after
//                the method's exit record; everything that was held is released.
//   Saving       Nothing here saves. A merge also changes the old configuration's store (what must not be carried
//                over is deleted there); whoever links the library decides which store is saved, and when.
//   Threads      One object is used by one thread at a time. Nothing is locked, and no state is kept between calls
//                but each object's inventory.

#ifndef CFGMIG_LIBCFGMIG_CONFIGFILE_H
#define CFGMIG_LIBCFGMIG_CONFIGFILE_H

#include <string>

#include "CfgUtils.h"

#define CFGMIG_EXPORT __attribute__((visibility("default")))

namespace cfgmig {
class InventoryIndex;
}

// The canonical change-log and backend plug-in definitions, which editCLInfo writes. It reads the pointers at the
// time of each addition, so a product may point them at definitions of its own.
extern CFGMIG_EXPORT const char* clogPlugInPath;
extern CFGMIG_EXPORT const char* rdbmPlugInPath;

class CFGMIG_EXPORT ConfigFile {
 public:
  // Opens the store on `fileName`, handing `key` on to it unread; `key` stays the caller's. Passes on what the store
  // throws.
  ConfigFile(std::string fileName, aes_key_data* key);

  // Frees the inventory and closes the store. Nothing is saved.
  virtual ~ConfigFile();

  ConfigFile(const ConfigFile&) = delete;
  ConfigFile& operator=(const ConfigFile&) = delete;

  // The path as it was passed to the constructor.
  std::string getFileName() const;

  // The number of slots of the inventory; 0 before getDns.
  int getDnNum() const;

  // The inventory: getDnNum() DNs in normal form. Null before getDns. The array and its strings stay this object's
  // and live until the next call of a method that is not const.
  char** getCfgDns() const;

  // The store; it stays this object's and lives as long as it.
  OVOConfigUtils::CfgUtils* getCfgUtils();

  // Fills the inventory with the DNs of all entries under "CN=CONFIGURATION", in the store's order. To be called once
  // on each object before any method below; a further call replaces the inventory without releasing the first one.
  // Result: 0; 1 when the store cannot list the entries, or lists a DN that has no normal form (the inventory then
  // ends with null slots); 90 when there is no memory for it (the inventory is then null).
  int getDns();

  // Writes the inventory to standard output, one DN a line, then an empty line.
  void dumpDns() const;

  // Frees the strings of a value list of the store, up to the first null slot, and nulls their slots. The array itself
  // is left alone; after the first call the list is empty and may be passed again.
  // Result: 0, or 56 for a null list.
  int freeParamVals(char** values);

  // Strips from this configuration what `cfg2` holds unchanged: identical entries go altogether, from the inventory
  // and the store; entries that differ lose the values that match, up to the first difference. `cfg2` is only read.
  // Result: 1 when the comparison ran, 0 when it could not start (`cfg2` has no inventory, no memory).
  int compareConfigFiles(ConfigFile* cfg2);

  // Carries the configuration `old` of a server of version `version` ("4.1", "5.1", "5.2" or "6.0") into this one.
  // Result: 1 when the merge was carried out, also for a version that has no rules and after failures of single
  // steps; 0 when it could not start (`old` has no inventory, no memory).
  int mergeConfigFiles(ConfigFile* old, const char* version);

  // Clean-up of this configuration: the settings that bind it to one database; the change log and its plug-in; the
  // plug-in definitions, rewritten to the canonical ones; the database instance.
  // Result of each: 0, or the store's code of the call that decided.
  int removeDBInfo();
  int removeCLInfo();
  int editCLInfo();
  int removeDBInstInfo();

  // Copies the schema files that this configuration includes, other than the server's own, from `searchDir`/etc to
  // `targetDir` and points the configuration at the copies. `copyArg` is handed to copyFile as it is.
  // Result: 0; 32 when a file was not found; 90 when there is no memory for the first list.
  // `*mFiles` receives the list of the files that were not found, `*cFiles` that of the files that were copied, each
  // only when there is one; otherwise they are left as they are. The lists and their strings are the caller's, to be
  // released with free; they are closed by a null slot.
  int checkSchemaFiles(char* searchDir, const char* targetDir, char* copyArg, char*** mFiles, char*** cFiles);

 private:
  // Comparison.
  int compareEntries(char* dn, ConfigFile* cfg2);
  void removeDn(char* dn);
  char* removeDn(char* dn, cfgmig::InventoryIndex& index);
  int processPlugins(ConfigFile* cfg2, bool legacy);
  int pluginCmp(const char* plugin1, const char* plugin2);

  // Merge driver: each selects the rule of the source version; rulesFor returns null for one without rules.
  struct VersionRules;
  static const VersionRules* rulesFor(const char* version);
  int processNewEntry(char* dn, ConfigFile* old, const char* version);
  int processUpdatedEntry(char* dn, ConfigFile* old, const char* version);
  int additionalChecks(ConfigFile* old, const char* version);

  // Transfer of one entry from `old` into this configuration: 1 for done, 0 for failed.
  int addCfgEntry(char* dn, ConfigFile* old);
  int mergeCfgEntry(char* dn, ConfigFile* old);
  int mergeChangeDnEntry(char* oldDn, char* newDn, ConfigFile* old);
  int isMultiVal(char* attribute);

  // Rules by source version: for entries that only `old` has, for entries that both have, and once at the end.
  int addTo41(char* dn, ConfigFile* old);
  int addTo51(char* dn, ConfigFile* old);
  int addTo52(char* dn, ConfigFile* old);
  int addTo60(char* dn, ConfigFile* old);
  int mergeIn41(char* dn, ConfigFile* old);
  int mergeIn51(char* dn, ConfigFile* old);
  int mergeIn52(char* dn, ConfigFile* old);
  int mergeIn60(char* dn, ConfigFile* old);
  int check41(ConfigFile* old);
  int check51(ConfigFile* old);
  int check52(ConfigFile* old);
  int check60(ConfigFile* old);
  int replAddEntry(ConfigFile* old);

  // Schema files.
  int isOVOFile(const char* fileName);
  int processIncSchema(ConfigFile* cfg);

  // The order is part of the binary interface. Invariant once getDns has returned 0: m_cfgDns has exactly m_dnNum
  // slots, each a heap string of this object's.
  std::string m_fileName;
  char** m_cfgDns;
  int m_dnNum;
  OVOConfigUtils::CfgUtils m_cfgUtils;
};

#endif  // CFGMIG_LIBCFGMIG_CONFIGFILE_H
