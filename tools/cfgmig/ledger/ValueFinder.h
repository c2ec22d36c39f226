// ValueFinder.h -- finds values in a snapshot, fastest when they are asked for in the snapshot's own order.

#ifndef CFGMIG_TOOL_LEDGER_VALUEFINDER_H
#define CFGMIG_TOOL_LEDGER_VALUEFINDER_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Ledger.h"

namespace tool {

// Attribute names are the same in any ASCII letter case.
bool isSameName(std::string_view left, std::string_view right);

// Takes constant time on average for each search, also in attributes with very many values. The snapshot must outlive
// it and stay where it is.
class ValueFinder {
 public:
  static constexpr std::uint32_t kNone = cfgstore::Snapshot::kNone;

  explicit ValueFinder(const cfgstore::Snapshot& snapshot) : m_snapshot(snapshot) {}

  // The number of an entry's attribute; kNone when there is none, or when `entry` is kNone.
  std::uint32_t attribute(std::uint32_t entry, std::string_view name);

  // The number of the first value of the attribute that equals `value`; kNoValue when there is none, or when
  // `attribute` is kNone.
  ValueId value(std::uint32_t attribute, std::string_view value);

  ValueId value(std::uint32_t entry, std::string_view name, std::string_view text) {
    return value(attribute(entry, name), text);
  }

 private:
  using ByHash = std::vector<std::pair<std::size_t, ValueId>>;  // sorted

  const ByHash& byHash(std::uint32_t attribute);

  const cfgstore::Snapshot& m_snapshot;
  std::uint32_t m_entry = kNone;                       // where the last search ended
  std::uint32_t m_attribute = kNone;                   // likewise
  ValueId m_value = kNoValue;                          // the value found last
  std::unordered_map<std::uint32_t, ByHash> m_byHash;  // of attributes with many values
};

}  // namespace tool

#endif  // CFGMIG_TOOL_LEDGER_VALUEFINDER_H
