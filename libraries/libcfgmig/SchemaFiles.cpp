// SchemaFiles.cpp -- which schema files are the server's own, and the include lists that name them.

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "ConfigFile.h"
#include "internal/KnownDns.h"
#include "internal/StoreResults.h"
#include "internal/TraceScope.h"

using namespace cfgmig;

namespace {

constexpr const char* kIncludeSchema = "zor-slapdIncludeSchema";

// The file of changes made at run time, V3.modifiedschema, counts as one of the server's own.
constexpr const char* kServersOwn[] = {
    "V3.modifiedschema", "V3.config.at", "V3.config.oc", "V3.user.at",      "V3.user.oc",       "V3.zor.at",
    "V3.zor.oc",         "V3.system.at", "V3.system.oc", "V3.ldapsyntaxes", "V3.matchingrules",
};

constexpr PlainMessage kNoFileName{"isOVOFile: fileName received is NULL\n"};
constexpr AttributeMessage kIncludesUnread{"processIncSchema: getParamArrayValueInfo for %s returned rc=%d\n"};
constexpr IndexedMessage kIncludeNotDropped{"processIncSchema: delValue for %s returned rc=%d, i=%d\n"};

constexpr PlainMessage kNoMemoryForMissing{"checkSchemaFiles: memory allocation failed for mFiles\n"};
constexpr PlainMessage kNoMemoryForCopied{"checkSchemaFiles: memory allocation failed for cFiles\n"};
constexpr Message<int> kNoMemoryForName{"checkSchemaFiles: memory allocation failed for cFiles[%d]\n"};
constexpr Message<const char*> kMissing{"checkSchemaFiles: Couldn't find file: %s.\n"};
constexpr Message<const char*> kFound{"checkSchemaFiles: Found file: %s.\n"};
constexpr Message<const char*, const char*> kNotCopied{"checkSchemaFiles: Couldn't copy %s to %s.\n"};
constexpr AttributeMessage kOldNotDropped{"checkSchemaFiles: delValue for %s returned rc=%d\n"};
constexpr AttributeMessage kNewNotAdded{"checkSchemaFiles: addValue for %s returned rc=%d\n"};

enum ReconcileResult { kNothingMissing = 0, kFilesMissing = 32, kNoMemory = 90 };

constexpr int kCopyPermissions = 0660;

// A list of file names for the caller, who owns it once it is handed out; until then it is this object's.
class NameList {
 public:
  ~NameList() {
    for (int i = 0; m_names != nullptr && i < m_count; ++i) std::free(m_names[slot(i)]);
  }

  // Room for `count` names and the closing null. All slots start as null: a walk that is broken off writes no closing
  // null, and its list must not end in whatever the memory held before.
  bool allocate(int count) {
    m_names = allocatePointers(count + 1);
    if (m_names == nullptr) return false;
    std::fill_n(m_names.get(), slot(count) + 1, nullptr);
    return true;
  }

  // Takes a copy of `name`. There may be no memory for it; the slot then stays null, and only `counted` makes it one
  // of the list's.
  enum class NoMemory { counted, notCounted };
  bool add(const std::string& name, NoMemory noMemory) {
    char* const copy = strdup(name.c_str());
    m_names[slot(m_count)] = copy;
    m_used = true;
    if (copy != nullptr || noMemory == NoMemory::counted) ++m_count;
    return copy != nullptr;
  }

  int count() const { return m_count; }
  bool used() const { return m_used; }
  void close() { m_names[slot(m_count)] = nullptr; }

  void handOut(char*** list) {
    m_count = 0;
    *list = m_names.release();
  }

 private:
  static std::size_t slot(int i) { return static_cast<std::size_t>(i); }

  PointerArray m_names;
  int m_count = 0;
  bool m_used = false;
};

// The part of an include value behind its last slash. A value without one is taken as written with backslashes, and
// without those has no file name at all.
std::string fileNameOf(std::string include) {
  if (include.find('/') == std::string::npos) std::replace(include.begin(), include.end(), '\\', '/');
  const std::size_t slash = include.rfind('/');
  return slash == std::string::npos ? std::string() : include.substr(slash + 1);
}

std::string textOf(const char* text) { return text == nullptr ? std::string() : std::string(text); }

}  // namespace

// Any path or name that contains one of the names counts, also with a prefix or a suffix such as that of a backup.
int ConfigFile::isOVOFile(const char* fileName) {
  TraceScope trace(kIsOVOFile);
  if (fileName == nullptr) {
    trace.debugAs(kArgumentClass, kNoFileName);
    return trace.result(0);
  }
  for (const char* name : kServersOwn) {
    if (std::strstr(fileName, name) != nullptr) return trace.result(1);
  }
  return trace.result(0);
}

int ConfigFile::processIncSchema(ConfigFile* cfg) {
  TraceScope trace(kProcessIncSchema);
  OVOConfigUtils::CfgUtils& store = *cfg->getCfgUtils();

  ValueList includes(*this);
  int rc = store.getParamArrayValueInfo(dn::kSchema, kIncludeSchema, includes.out(), includes.countOut());
  if (rc != 0) {
    trace.debug(kIncludesUnread, kIncludeSchema, rc);
    includes.endSilently();  // intended: nothing was read, and freeParamVals is not called
    return trace.result(0);
  }
  for (int i = 0; i < includes.count(); ++i) {
    if (includes[i] == nullptr || isOVOFile(includes[i]) == 0) continue;
    rc = store.delValue(dn::kSchema, kIncludeSchema, DeleteList(includes[i]));
    if (rc != 0) trace.debug(kIncludeNotDropped, kIncludeSchema, rc, i);
  }
  return trace.result(1);
}

int ConfigFile::checkSchemaFiles(char* searchDir, const char* targetDir, char* copyArg, char*** mFiles,
                                 char*** cFiles) {
  TraceScope trace(kCheckSchemaFiles);
  const std::string searchPath = textOf(searchDir) + "/etc";
  const std::string targetPath = textOf(targetDir);

  NameList missing;
  NameList copied;
  ValueList includes(*this);
  int rc = m_cfgUtils.getParamArrayValueInfo(dn::kSchema, kIncludeSchema, includes.out(), includes.countOut());
  if (rc != 0) return trace.result(kNothingMissing);
  if (!missing.allocate(includes.count())) {
    trace.debug(kNoMemoryForMissing);
    includes.endSilently();
    return trace.result(kNoMemory);
  }
  if (!copied.allocate(includes.count())) {
    trace.debug(kNoMemoryForCopied);
    return trace.result(kNothingMissing);
  }

  bool brokenOff = false;
  for (int i = 0; i < includes.count() && !brokenOff; ++i) {
    if (isOVOFile(includes[i]) != 0) continue;
    const std::string fileName = fileNameOf(textOf(includes[i]));
    const std::string source = searchPath + "/" + fileName;
    if (doesFileExist(source.c_str()) == 0) {
      trace.debugAs(kInformationClass, kMissing, source.c_str());
      missing.add(fileName, NameList::NoMemory::counted);
      continue;
    }
    trace.debugAs(kInformationClass, kFound, source.c_str());
    const std::string target = targetPath + "/" + fileName;
    if (copyFile(source.c_str(), target.c_str(), copyArg, 0, kCopyPermissions) == 0) {
      trace.debugAs(kInformationClass, kNotCopied, source.c_str(), target.c_str());
      continue;
    }

    // The include value becomes the copy's path. A failure from here on ends the walk.
    brokenOff = true;
    if (rc = m_cfgUtils.delValue(dn::kSchema, kIncludeSchema, DeleteList(includes[i])); rc != 0) {
      trace.debug(kOldNotDropped, kIncludeSchema, rc);
    } else if (rc = m_cfgUtils.addValue(dn::kSchema, kIncludeSchema, target.c_str()); rc != 0) {
      trace.debug(kNewNotAdded, kIncludeSchema, rc);
    } else if (const int slot = copied.count(); !copied.add(fileName, NameList::NoMemory::notCounted)) {
      trace.debug(kNoMemoryForName, slot);
    } else {
      brokenOff = false;
    }
  }

  if (!brokenOff) {
    if (missing.used()) missing.close();
    if (copied.used()) copied.close();
  }
  if (copied.used()) copied.handOut(cFiles);
  if (!missing.used()) return trace.result(kNothingMissing);
  missing.handOut(mFiles);
  return trace.result(kFilesMissing);
}
