// World.h -- all that the library under test can see of its surroundings: the stores behind the file names, the trace
// facility, the files on disk, the heap. A test makes one World, prepares it, lets the library run, and looks at what
// was called, in which order, what was traced, and what did not come back.
//
// There is one World at a time; the fakes of CfgUtils.h and ldtr.h act on it.

#ifndef CFGMIG_TESTS_SUPPORT_WORLD_H
#define CFGMIG_TESTS_SUPPORT_WORLD_H

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Content.h"
#include "Faults.h"
#include "Resources.h"
#include "TraceRecord.h"
#include "ldtr.h"

namespace fake {

inline constexpr unsigned kAllEvents = 0xffffffff;

// A call of copyFile.
struct FileCopy {
  std::string source;
  std::string destination;
  char* text;
  int reserved;
  int permissions;
};

class World {
 public:
  // Whether the library under test was linked so that its calls of malloc and free are seen.
  enum class Memory { accounted, unseen };

  explicit World(Memory memory = Memory::accounted);
  ~World();
  World(const World&) = delete;
  World& operator=(const World&) = delete;
  static World& current();
  static World* currentOrNull();

  // The content behind a file name; made empty when first asked for. It outlives the ConfigFile.
  Content& store(const std::string& fileName) { return m_stores[fileName]; }
  aes_key_data* keyOf(const std::string& fileName) const;  // that the store was last opened with

  Faults& faults() { return m_faults; }
  Resources& resources() { return m_resources; }
  const Resources& resources() const { return m_resources; }

  // The files that doesFileExist knows, and what was copied. A copy makes its destination exist.
  std::set<std::string>& files() { return m_files; }
  std::vector<FileCopy>& fileCopies() { return m_fileCopies; }

  // Replaces the normal form of DNs. An answer of nothing makes formatDn fail.
  void formatDnsBy(std::function<std::optional<std::string>(std::string_view)> form) { m_form = std::move(form); }
  std::optional<std::string> normalForm(std::string_view dn) const { return m_form(dn); }

  // The calls so far, one line each, as "old.delValue(CN=SSL,CN=CONFIGURATION, zor-slapdPort, [389]) = 0",
  // "cfg_ber_free(old:CN=SSL,CN=CONFIGURATION)"; a call that threw ends in "throws". calls leaves out those of
  // compareDns, of which there is one for each DN constant that a rule tries.
  std::vector<std::string> calls() const;
  const std::vector<std::string>& callsWithComparisons() const { return m_calls; }
  void keepCalls(bool keep) { m_keepsCalls = keep; }
  // Called after every call with its line.
  void onCall(std::function<void(const std::string&)> listener) { m_onCall = std::move(listener); }
  bool wantsCalls() const { return m_keepsCalls || m_onCall; }
  // Called with every value list before it is handed out, which may be spoilt then.
  void onList(std::function<void(std::string_view attribute, char** values)> listener) {
    m_onList = std::move(listener);
  }
  void handsOut(std::string_view attribute, char** values) const {
    if (m_onList) {
      m_onList(attribute, values);
    }
  }
  void called(std::string line);

  // The trace. Everything is enabled to begin with.
  void setEvents(unsigned mask) { trcEvents = mask; }
  const std::vector<TraceRecord>& records() const { return m_records; }
  std::vector<std::string> trace() const;     // all records' texts
  std::vector<std::string> messages() const;  // those of debug messages
  void onRecord(std::function<void(const TraceRecord&)> listener) { m_onRecord = std::move(listener); }
  void record(TraceRecord record);

  // The library's own heap: makes its n-th allocation from now on answer null, or the first of `size` bytes.
  void failAllocation(int n) { m_failingAllocation = n; }
  void failAllocationOf(std::size_t size) { m_failingSize = size; }
  bool allocationFails(std::size_t size);
  const std::vector<std::size_t>& allocationSizes() const { return m_allocationSizes; }

  // Forgets calls, records and allocation sizes so far; content, faults and resources stay.
  void forgetCalls();

  void opened(const std::string& fileName, aes_key_data* key) { m_keys[fileName] = key; }

 private:
  std::map<std::string, Content> m_stores;
  std::map<std::string, aes_key_data*> m_keys;
  Faults m_faults;
  Resources m_resources;
  std::set<std::string> m_files;
  std::vector<FileCopy> m_fileCopies;
  std::function<std::optional<std::string>(std::string_view)> m_form;
  std::vector<std::string> m_calls;
  bool m_keepsCalls = true;
  std::function<void(const std::string&)> m_onCall;
  std::function<void(std::string_view, char**)> m_onList;
  std::vector<TraceRecord> m_records;
  std::function<void(const TraceRecord&)> m_onRecord;
  int m_failingAllocation = 0;
  std::optional<std::size_t> m_failingSize;
  std::vector<std::size_t> m_allocationSizes;
};

}  // namespace fake

#endif  // CFGMIG_TESTS_SUPPORT_WORLD_H
