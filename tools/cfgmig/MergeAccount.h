// MergeAccount.h -- what became of the old configuration in a merge, told from what the library does while it merges.
//
// The library reports a bare number, so the account is derived from outside, from two streams that arrive in the
// order of what happened: the library's trace records and the journals of both stores. They are put together by what
// is certain about a merge:
//
//   - An old entry is new when the new inventory lacks its DN, otherwise common; texts are compared exactly.
//   - First each new entry is handed to processNewEntry, in the order of the old inventory; then each common one to
//     processUpdatedEntry, as often as the new inventory holds it. So the n-th record of either is about the n-th
//     such entry.
//   - Inside, one record of a transfer method (addCfgEntry, mergeCfgEntry, mergeChangeDnEntry, replAddEntry) tells how
//     the entry was carried and, with result 0, that the transfer ended early. Without one, the entry was left to its
//     rule alone.
//   - A write belongs to the method that was entered last and not left.
//   - An entry that is created while no old entry is worked on was added by a rule.
//
// Everything that does not fit is an error of the tool or of the library, and no account is given.
// The same two streams, sorted in the same way, are what the ledger is made of: see ledger/Accounting.h.

#ifndef CFGMIG_TOOL_MERGEACCOUNT_H
#define CFGMIG_TOOL_MERGEACCOUNT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ConfigStore.h"
#include "TraceControl.h"
#include "ledger/EventLog.h"
#include "ledger/Ledger.h"

namespace tool {

// What became of an entry of the old inventory: never outside.
using Fate = EntryFate;
inline constexpr std::size_t kFates = 7;

// Something that should have happened and did not.
struct Loss {
  enum class Kind {
    write,       // the store refused a write
    endedEarly,  // a transfer ended before the whole entry was carried, for another reason than a write
    givenUp,     // the rule for the entry did not begin the transfer
  };

  Kind kind = Kind::write;
  std::string method;               // that was at work
  std::string entry;                // the old entry's DN; empty when the loss is of none
  std::string target;               // the DN in the new configuration that it should have reached; empty when it is
                                    // not known
  std::string operation;            // write: the store operation
  std::string attribute;            // write: empty for whole entries
  std::optional<int> code;          // the store's answer, where it is known
  std::string reason;               // what the library said of it, without the method's name; may be empty
  bool restNotCarried = false;      // the rest of the entry was left behind
  std::vector<std::string> behind;  // names of the attributes that were left behind, where they are known
};

// The account of a finished merge.
struct Account {
  std::vector<Fate> fates;               // one for each DN of the old inventory, in its order
  std::size_t count[kFates] = {};        // how many entries have each fate; the sum is the number of old entries
  std::size_t valuesWritten = 0;         // values that the new configuration did not hold before the write
  std::size_t valuesDropped = 0;         // values that a rule took out of the old configuration
  std::size_t valuesMoved = 0;           // values that a rule took out there and set elsewhere in the new one
  std::vector<std::string> addedByRule;  // the DNs of entries that are not an old entry's
  std::vector<Loss> losses;              // in the order in which they happened
  std::vector<std::string> messages;     // the library's debug messages, in order; repetitions in a row are one line

  std::size_t of(Fate fate) const { return count[static_cast<std::size_t>(fate)]; }
};

// What the driver did with one entry of the old inventory.
struct EntryWork {
  std::uint32_t entry = 0;  // the entry of the snapshot, or kNone when there is none of it
  bool isNew = false;       // handed to the rule for entries that the new configuration lacks
  Fate fate = Fate::skipped;
  unsigned long rule = 0;      // the first method that the dispatcher entered; 0 when it entered none
  unsigned long transfer = 0;  // the transfer method that ran; 0 when none did
  bool transferDone = false;   // and its result
  int stopCode = 0;            // of a transfer that ended early or a rule that gave up: the code that its message names
  std::size_t firstEvent = 0;  // its writes are the events from this one on
  std::size_t endEvent = 0;    // to the one before this
};

class MergeAccount {
 public:
  using Inventory = std::vector<std::string>;

  // The inventories of both configurations before the merge, and the old configuration as it was then, which must
  // outlive the account. Without it, the events say nothing of old values.
  MergeAccount(Inventory oldEntries, const Inventory& newEntries, const cfgstore::Snapshot* old = nullptr);

  void record(const ldtr::Record& record);
  void write(Side side, const cfgstore::Write& write);

  // Writes that come between no records, after the merge, belong to this method.
  void setMethodOutside(unsigned long identifier) { m_methodOutside = identifier; }

  // To be called once, after the merge. Throws std::logic_error when the records do not make a whole account.
  Account finish();

  // What the account was made of. An entry that was worked on more than once is there as often.
  EventLog& events() { return m_events; }
  const std::vector<EntryWork>& works() const { return m_works; }

 private:
  enum class Phase { none, newEntry, commonEntry };

  // The work on one old entry, between the records of a dispatcher.
  struct Work {
    Phase phase = Phase::none;
    std::size_t entry = 0;
    std::optional<unsigned long> transfer;  // the transfer method that ran
    bool transferDone = false;              // and its result
    bool wrote = false;                     // the new configuration took a write
    std::string target;                     // where the transfer wrote
    std::string transferMessage;            // the last debug message of the transfer
    std::string message;                    // the last debug message of any method
    unsigned long messageMethod = 0;        // and that method; 0 when there was none or it has no identifier
    std::size_t lossesBefore = 0;
    EntryWork told;
  };

  void enter(unsigned long identifier);
  void leave(unsigned long identifier, long result);
  void message(const ldtr::Record& record);
  void begin(Phase phase);
  void end();
  void decide(Fate fate);
  bool isEntryThatIsThere(const cfgstore::Write& write) const;
  void noteWriteOfRule(Side side, const cfgstore::Write& write);
  void noteFailure(Side side, const cfgstore::Write& write);
  void noteIncompleteTransfer();
  void addLoss(Loss::Kind kind, const std::string& reason, const std::string& method);

  std::uint32_t numberOf(std::size_t entry) const { return entry < m_numbers.size() ? m_numbers[entry] : kNone; }
  static constexpr std::uint32_t kNone = cfgstore::Snapshot::kNone;

  Inventory m_old;
  std::vector<std::uint32_t> m_numbers;      // in the snapshot, of the entries of m_old
  std::vector<std::size_t> m_newEntries;     // indices into m_old, in the order of the driver
  std::vector<std::size_t> m_commonEntries;  // likewise; an entry may stand there more than once
  std::size_t m_nextNew = 0;
  std::size_t m_nextCommon = 0;
  std::vector<std::optional<Fate>> m_fates;
  std::vector<unsigned long> m_methods;  // entered and not left
  unsigned long m_methodOutside = 0;
  Work m_work;
  cfgstore::Snapshot m_noSnapshot;
  EventLog m_events;
  std::vector<EntryWork> m_works;
  std::optional<std::string> m_droppedValue;  // what the last write took out of the old configuration
  std::string m_lastMessage;
  std::size_t m_repeated = 0;  // how often it has come in a row
  Account m_account;
};

}  // namespace tool

#endif  // CFGMIG_TOOL_MERGEACCOUNT_H
