// EntryComparison.cpp -- strips from this configuration what a second one holds unchanged.

#include <strings.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "ConfigFile.h"
#include "internal/InventoryIndex.h"
#include "internal/KnownDns.h"
#include "internal/StoreResults.h"
#include "internal/TraceScope.h"

using namespace cfgmig;

namespace {

enum ComparisonResult { kNotStarted = 0, kCompared = 1 };
enum EntryResult { kDifferent = 0, kIdentical = 1 };

constexpr PlainMessage kNoSecondInventory{"compareConfigFiles: cfg2Dns is NULL\n"};
constexpr PlainMessage kNoMemory{"comapreConfigFiles: memory allocation failed for commonEntries\n"};  // intended

constexpr IndexedMessage kMatchedNotDropped{"compareEntries: delValue(1) for %s returned rc=%d, i=%d\n"};
constexpr IndexedMessage kMoreNotDropped{"compareEntries: delValue(2) for %s returned rc=%d, i=%d\n"};
constexpr IndexedMessage kFewerNotDropped{"compareEntries: delValue(3) for %s returned rc=%d, i=%d\n"};
constexpr IndexedMessage kAgainNotDropped{"compareEntries: delValue(4) for %s returned rc=%d, i=%d\n"};
constexpr AttributeMessage kNotAdvanced{"compareEntries: delValue for %s returned rc=%d\n"};  // intended: "delValue"

// Two walks in lockstep are released together: both cursors, then both entries.
class Lockstep {
 public:
  Lockstep(AttributeWalk& mine, AttributeWalk& theirs) : m_mine(mine), m_theirs(theirs) {}
  ~Lockstep() {
    m_mine.closeCursor();
    m_theirs.closeCursor();
    m_mine.closeEntry();
    m_theirs.closeEntry();
  }
  Lockstep(const Lockstep&) = delete;
  Lockstep& operator=(const Lockstep&) = delete;

 private:
  AttributeWalk& m_mine;
  AttributeWalk& m_theirs;
};

// Deletes single values of one attribute of one entry and reports the failures; nothing ends at them.
struct Deletion {
  OVOConfigUtils::CfgUtils& store;
  const char* dn;
  const char* attribute;
  const TraceScope& trace;

  void of(const ValueList& values, int i, IndexedMessage failure) const {
    const int rc = store.delValue(dn, attribute, DeleteList(values[i]));
    if (rc != 0) trace.debug(failure, attribute, rc, i);
  }
};

bool sameText(const char* mine, const char* theirs) { return strcasecmp(mine, theirs) == 0; }

// Deletes the values that match, position by position, and tells whether all did.
EntryResult dropMatching(const ValueList& mine, const ValueList& theirs, const Deletion& drop) {
  if (mine.count() != theirs.count()) {
    const IndexedMessage failure = mine.count() > theirs.count() ? kMoreNotDropped : kFewerNotDropped;
    for (int i = 0; i < std::min(mine.count(), theirs.count()); ++i) {
      if (sameText(mine[i], theirs[i])) drop.of(mine, i, failure);
    }
    return kDifferent;
  }
  for (int i = 0; i < mine.count(); ++i) {
    if (!sameText(mine[i], theirs[i])) return kDifferent;
    drop.of(mine, i, kMatchedNotDropped);
  }
  // Intended: once more. The values are gone already, so the store refuses and the refusals are reported.
  for (int i = 0; i < mine.count(); ++i) drop.of(mine, i, kAgainNotDropped);
  return kIdentical;
}

// A name for a message; a failed advance may have left none.
const char* nameOf(const AttributeWalk& walk) { return walk.name() == nullptr ? "(null)" : walk.name(); }

// The DN pointers of this configuration that stand in both inventories. Its size is the smaller count; only an
// inventory that holds a DN more than once can need more.
class CommonEntries {
 public:
  bool allocate(int room) {
    m_room = room;
    m_dns = allocatePointers(room);
    return m_dns != nullptr;
  }
  bool add(char* dn) {
    if (m_count == m_room && !grow()) return false;
    m_dns[static_cast<std::size_t>(m_count++)] = dn;
    return true;
  }
  char** begin() const { return m_dns.get(); }
  char** end() const { return m_dns.get() + m_count; }

 private:
  bool grow() {
    PointerArray larger = allocatePointers(2 * m_room + 1);
    if (larger == nullptr) return false;
    std::copy(begin(), end(), larger.get());
    m_dns = std::move(larger);
    m_room = 2 * m_room + 1;
    return true;
  }

  PointerArray m_dns;
  int m_room = 0;
  int m_count = 0;
};

}  // namespace

int ConfigFile::compareConfigFiles(ConfigFile* cfg2) {
  TraceScope trace(kCompareConfigFiles);
  char** const cfg2Dns = cfg2->getCfgDns();
  if (cfg2Dns == nullptr) {
    trace.debug(kNoSecondInventory);
    return trace.result(kNotStarted);
  }
  CommonEntries commonEntries;
  if (!commonEntries.allocate(std::min(m_dnNum, cfg2->getDnNum()))) {
    trace.debug(kNoMemory);
    return trace.result(kNotStarted);
  }

  const InventoryIndex theirs(cfg2Dns, cfg2->getDnNum());
  for (int i = 0; m_cfgDns != nullptr && i < m_dnNum; ++i) {
    if (m_cfgDns[i] == nullptr || !theirs.contains(m_cfgDns[i])) continue;
    if (!commonEntries.add(m_cfgDns[i])) {
      trace.debug(kNoMemory);
      return trace.result(kNotStarted);
    }
  }

  // The strings that leave the inventory are in use until the end: the list of common entries points at them.
  std::vector<std::unique_ptr<char, FreeBlock>> removed;
  InventoryIndex mine(m_cfgDns, m_dnNum);
  for (char* dn : commonEntries) {
    if (compareDns(dn, dn::kDirectoryBackend) != 0) processPlugins(cfg2, false);
    if (compareDns(dn, dn::kLegacyDirectoryBackend) != 0) processPlugins(cfg2, true);
    if (compareEntries(dn, cfg2) == kDifferent) continue;
    removed.emplace_back();  // first, so that no memory is needed between the removal and the keeping
    removed.back().reset(removeDn(dn, mine));
    m_cfgUtils.removeEntry(dn);
  }
  return trace.result(kCompared);
}

int ConfigFile::compareEntries(char* dn, ConfigFile* cfg2) {
  TraceScope trace(kCompareEntries);
  OVOConfigUtils::CfgUtils& theirStore = *cfg2->getCfgUtils();

  trace.result(kIdentical);  // until a difference is found; also what the exit record of an exception carries
  ValueList theirValues(*this);
  ValueList myValues(*this);
  AttributeWalk mine(m_cfgUtils);
  AttributeWalk theirs(theirStore);
  const Lockstep lockstep(mine, theirs);
  // None of these codes is tested: an entry that cannot be read has no attributes.
  mine.open(dn);
  theirs.open(dn);
  mine.first();
  theirs.first();
  while (mine.name() != nullptr && theirs.name() != nullptr) {
    char* const attribute = mine.name();
    if (!sameText(attribute, theirs.name())) return trace.result(kDifferent);
    m_cfgUtils.getParamArrayValueInfo(dn, attribute, myValues.out(), myValues.countOut());
    theirStore.getParamArrayValueInfo(dn, theirs.name(), theirValues.out(), theirValues.countOut());
    if (dropMatching(myValues, theirValues, {m_cfgUtils, dn, attribute, trace}) == kDifferent) {
      return trace.result(kDifferent);
    }
    myValues.release();
    theirValues.release();

    int rc = mine.next();
    if (rc != 0) trace.debug(kNotAdvanced, nameOf(mine), rc);
    rc = theirs.next();
    if (rc != 0) {
      trace.debug(kNotAdvanced, nameOf(mine), rc);  // intended: this configuration's attribute here, too
      return trace.result(kDifferent);
    }
  }
  return trace.result(mine.name() == nullptr && theirs.name() == nullptr ? kIdentical : kDifferent);
}

void ConfigFile::removeDn(char* dn) {
  InventoryIndex index(m_cfgDns, m_dnNum);
  removeDn(dn, index);
}

// Takes `dn` out of the inventory and returns the string that stood there, which is then the caller's; null if there
// was none.
char* ConfigFile::removeDn(char* dn, InventoryIndex& index) {
  TraceScope trace(kRemoveDn);
  const int position = index.lastPosition(dn);
  if (position < 0) return nullptr;
  const int last = m_dnNum - 1;
  char* const removed = m_cfgDns[position];
  index.move(removed, position, m_cfgDns[last], last);
  m_cfgDns[position] = m_cfgDns[last];
  m_cfgDns[last] = nullptr;
  m_dnNum = last;
  return removed;
}
