// EntryTransfer.cpp -- carries the values of one entry of the old configuration into this one.

#include <strings.h>

#include <cstring>
#include <span>

#include "ConfigFile.h"
#include "internal/StoreResults.h"
#include "internal/TraceScope.h"

using namespace cfgmig;

namespace {

constexpr const char* kCn = "CN";
constexpr const char* kObjectClass = "OBJECTCLASS";
constexpr const char* kTop = "TOP";
constexpr int kNoSuchAttribute = 16;

enum TransferResult { kFailed = 0, kDone = 1 };

// Every other attribute is single-valued for a merge, whatever the schema says.
constexpr const char* kMultiValued[] = {
    kObjectClass,        "zor-slapdCachedAttribute", "zor-slapdSchemaAdditions", "zor-slapdIncludeSchema",
    "zor-slapdReferral", "zor-slapdSetenv",          "zor-slapdSuffix",          "zor-slapdPlugin",
};

using Names = std::span<const char* const>;

bool isOneOf(const char* attribute, Names names) {
  for (const char* name : names) {
    if (strcasecmp(attribute, name) == 0) return true;
  }
  return false;
}

// Intended: "ger", in the first two texts.
namespace add {
constexpr RcMessage cnUnread{"addCfgEntry: gerParamValueInfo returned rc=%d\n"};
constexpr RcMessage objectClassesUnread{"addCfgEntry: gerParamArrayValueInfo returned rc=%d\n"};
constexpr RcMessage notAddedWithTwo{"addCfgEntry: addEntry(1) returned rc=%d\n"};
constexpr IndexedRcMessage objectClassNotAdded{"addCfgEntry: addValue(1) returned rc=%d, i=%d\n"};
constexpr RcMessage notAddedWithTop{"addCfgEntry: addEntry(2) returned rc=%d\n"};
}  // namespace add

// What the two merges of an existing entry do differently.
enum class WhenTheNewEntryLacksIt { addTheValues, endTheTransfer };
enum class WhenTheOldEntryIsUnread { cleanUp, leaveAtOnce };

struct Merge {
  Names skipped;
  WhenTheNewEntryLacksIt absent;
  WhenTheOldEntryIsUnread unread;
  RcMessage entryUnread;
  RcMessage attributeUnread;
  RcMessage oldValuesUnread;
  RcMessage newValuesUnread;
  IndexedRcMessage absentNotAdded;
  IndexedRcMessage multiNotAdded;
  RcMessage notSet;
  RcMessage nextUnread;
};

constexpr const char* kServersOwn[] = {kObjectClass, "zor-slapdVersion"};
constexpr const char* kServersOwnAndNaming[] = {kObjectClass, "zor-slapdVersion", kCn};

constexpr Merge kMergeSameDn{
    .skipped = kServersOwn,
    .absent = WhenTheNewEntryLacksIt::addTheValues,
    .unread = WhenTheOldEntryIsUnread::leaveAtOnce,  // intended: without the calls of freeParamVals
    .entryUnread = {"mergeCfgEntry: getFirstEntry returned rc=%d\n"},
    .attributeUnread = {"mergeCfgEntry: getFirstAttribute returned rc=%d\n"},
    .oldValuesUnread = {"mergeCfgEntry: getParamArrayValueInfo(1) returned rc=%d\n"},
    .newValuesUnread = {"mergeCfgEntry: getParamArrayValueInfo(2) returned rc=%d\n"},
    .absentNotAdded = {"mergeCfgEntry: addValue returned rc=%d, i=%d\n"},
    .multiNotAdded = {"mergeCfgEntry: addValue returned rc=%d, k=%d\n"},
    .notSet = {"mergeCfgEntry: setValue returned rc=%d\n"},
    .nextUnread = {"mergeCfgEntry: getNextAttribute returned rc=%d\n"},
};

constexpr Merge kMergeChangedDn{
    .skipped = kServersOwnAndNaming,                   // the new entry keeps the naming value of its own DN
    .absent = WhenTheNewEntryLacksIt::endTheTransfer,  // intended: nothing behind such an attribute is carried
    .unread = WhenTheOldEntryIsUnread::cleanUp,
    .entryUnread = {"mergeChangeDnEntry: getFirstEntry returned rc=%d\n"},
    .attributeUnread = {"mergeChangeDnEntry: getFirstAttribute returned rc=%d\n"},
    .oldValuesUnread = {"mergeChangeDnEntry: getParamArrayValueInfo(1) returned rc=%d\n"},
    .newValuesUnread = {"mergeChangeDnEntry: getParamArrayValueInfo(2) returned rc=%d\n"},
    .absentNotAdded = {"mergeChangeDnEntry: addValue returned rc=%d, i=%d\n"},  // never, as long as absence ends it
    .multiNotAdded = {"mergeChangeDnEntry: addValue returned rc=%d, k=%d\n"},
    .notSet = {"mergeChangeDnEntry: setValue returned rc=%d\n"},
    .nextUnread = {"mergeChangeDnEntry: getNextAttribute returned rc=%d\n"},
};

struct Sides {
  OVOConfigUtils::CfgUtils& source;
  const char* oldDn;
  OVOConfigUtils::CfgUtils& target;
  const char* newDn;
};

// Adds all values of a list to an attribute; the first failure ends it and is reported.
bool addAll(const Sides& sides, const char* attribute, const ValueList& values, const TraceScope& trace,
            IndexedRcMessage failure) {
  for (int i = 0; i < values.count(); ++i) {
    const int rc = sides.target.addValue(sides.newDn, attribute, values[i]);
    if (rc != 0) {
      trace.debug(failure, rc, i);
      return false;
    }
  }
  return true;
}

// Sets the first old value, unless it is the first new one already, letter by letter.
bool setFirst(const Sides& sides, const char* attribute, const ValueList& oldValues, const ValueList& newValues,
              const TraceScope& trace, RcMessage failure) {
  if (oldValues.count() < 1) return true;
  if (newValues.count() > 0 && std::strcmp(oldValues[0], newValues[0]) == 0) return true;
  const int rc = sides.target.setValue(sides.newDn, attribute, oldValues[0]);
  if (rc != 0) trace.debug(failure, rc);
  return rc == 0;
}

// Walks the old entry and carries its values into the existing new one. `isMultiValued` asks the traced test.
template <class Test>
TransferResult mergeEntry(const Merge& merge, const Sides& sides, ConfigFile& owner, const TraceScope& trace,
                          Test isMultiValued) {
  ValueList oldValues(owner);
  ValueList newValues(owner);
  AttributeWalk walk(sides.source);
  int rc = walk.open(sides.oldDn);
  if (rc != 0) {
    trace.debug(merge.entryUnread, rc);
    if (merge.unread == WhenTheOldEntryIsUnread::leaveAtOnce) {
      oldValues.endSilently();
      newValues.endSilently();
    }
    return kFailed;
  }
  rc = walk.first();
  if (rc != 0) {
    trace.debug(merge.attributeUnread, rc);
    return kFailed;
  }

  while (walk.name() != nullptr) {
    char* const attribute = walk.name();
    if (!isOneOf(attribute, merge.skipped)) {
      rc = sides.source.getParamArrayValueInfo(sides.oldDn, attribute, oldValues.out(), oldValues.countOut());
      if (rc != 0) {
        trace.debug(merge.oldValuesUnread, rc);
        return kFailed;
      }
      rc = sides.target.getParamArrayValueInfo(sides.newDn, attribute, newValues.out(), newValues.countOut());
      const bool absent = rc == kNoSuchAttribute && merge.absent == WhenTheNewEntryLacksIt::addTheValues;
      if (rc != 0 && !absent) {
        trace.debug(merge.newValuesUnread, rc);
        return kFailed;
      }

      const bool carried = absent ? addAll(sides, attribute, oldValues, trace, merge.absentNotAdded)
                           : isMultiValued(attribute)
                               ? addAll(sides, attribute, oldValues, trace, merge.multiNotAdded)
                               : setFirst(sides, attribute, oldValues, newValues, trace, merge.notSet);
      if (!carried) return kFailed;
      newValues.release();
      oldValues.release();
    }
    rc = walk.next();
    if (rc != 0) {
      trace.debug(merge.nextUnread, rc);
      return kFailed;
    }
  }
  return kDone;
}

}  // namespace

int ConfigFile::addCfgEntry(char* dn, ConfigFile* old) {
  TraceScope trace(kAddCfgEntry);
  OVOConfigUtils::CfgUtils& source = *old->getCfgUtils();

  Text cn;
  int rc = source.getParamValueInfo(dn, kCn, cn.out());
  if (rc != 0) {
    trace.debug(add::cnUnread, rc);
    return trace.result(kFailed);  // intended: before `values` exists, so that freeParamVals is not called
  }

  ValueList values(*this);
  AttributeWalk walk(source);
  WholeList objectClasses;
  rc = source.getParamArrayValueInfo(dn, kObjectClass, objectClasses.out(), objectClasses.countOut());
  if (rc != 0) {
    trace.debug(add::objectClassesUnread, rc);
    return trace.result(kFailed);
  }
  // Without any object class no entry is created; the values below then go to an entry that may not exist.
  if (objectClasses.count() > 1) {
    rc = m_cfgUtils.addEntry(dn, cn.get(), objectClasses[0], objectClasses[1]);
    if (rc != 0) {
      trace.debug(add::notAddedWithTwo, rc);
      return trace.result(kFailed);
    }
    for (int i = 2; i < objectClasses.count(); ++i) {
      rc = m_cfgUtils.addValue(dn, kObjectClass, objectClasses[i]);
      if (rc != 0) {
        trace.debug(add::objectClassNotAdded, rc, i);
        return trace.result(kFailed);
      }
    }
  } else if (objectClasses.count() == 1) {
    rc = m_cfgUtils.addEntry(dn, cn.get(), objectClasses[0], kTop);
    if (rc != 0) {
      trace.debug(add::notAddedWithTop, rc);
      return trace.result(kFailed);
    }
  }
  objectClasses.release();

  // Every attribute, object classes and CN included: the store takes a value that it has already. The codes of the
  // reads are not tested; that of the last addition decides.
  walk.open(dn);
  walk.first();
  while (walk.name() != nullptr) {
    source.getParamArrayValueInfo(dn, walk.name(), values.out(), values.countOut());
    for (int i = 0; i < values.count(); ++i) rc = m_cfgUtils.addValue(dn, walk.name(), values[i]);
    values.release();
    walk.next();
  }
  return trace.result(rc == 0 ? kDone : kFailed);
}

int ConfigFile::mergeCfgEntry(char* dn, ConfigFile* old) {
  TraceScope trace(kMergeCfgEntry);
  return trace.result(mergeEntry(kMergeSameDn, {*old->getCfgUtils(), dn, m_cfgUtils, dn}, *this, trace,
                                 [this](char* attribute) { return isMultiVal(attribute) != 0; }));
}

int ConfigFile::mergeChangeDnEntry(char* oldDn, char* newDn, ConfigFile* old) {
  TraceScope trace(kMergeChangeDnEntry);
  return trace.result(mergeEntry(kMergeChangedDn, {*old->getCfgUtils(), oldDn, m_cfgUtils, newDn}, *this, trace,
                                 [this](char* attribute) { return isMultiVal(attribute) != 0; }));
}

int ConfigFile::isMultiVal(char* attribute) {
  TraceScope trace(kIsMultiVal);
  return trace.unreported(isOneOf(attribute, kMultiValued) ? 1 : 0);  // intended: the exit record always carries 0
}
