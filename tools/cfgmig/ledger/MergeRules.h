// MergeRules.h -- what the ledger has to know of the rules beyond what it sees them do: which settings no transfer
// carries, where a moved entry was to go, which values of an entry its rule asks for.

#ifndef CFGMIG_TOOL_LEDGER_MERGERULES_H
#define CFGMIG_TOOL_LEDGER_MERGERULES_H

#include <string_view>

namespace tool {

inline constexpr const char* kCn = "CN";
inline constexpr const char* kObjectClass = "OBJECTCLASS";
inline constexpr const char* kIncludeSchema = "zor-slapdIncludeSchema";

// The normal DN to which the entry with the normal DN `oldDn` is moved; empty when no rule moves it.
std::string_view targetOfMoved(std::string_view oldDn);

// True when a merge of two entries carries all values of the attribute, whatever the new entry has.
bool isList(std::string_view attribute);

// True when a merge of two entries leaves the new entry's own. `sameDn` is false for entries of different DNs.
bool isServersOwn(std::string_view attribute, bool sameDn);

// How the old master server entry that is to be built anew names the other server.
enum class MasterKind { replica, peer, neither };

// The attribute that the value of `attribute` goes to when that entry is built anew; empty when it is not asked for.
std::string_view rebuiltAs(std::string_view attribute, MasterKind kind);

inline constexpr const char* kMasterDn = "zor-slapdMasterDN";
inline constexpr const char* kMasterPw = "zor-slapdMasterPW";
inline constexpr const char* kPeerDn = "zor-slapdPeerDN";
inline constexpr const char* kPeerPw = "zor-slapdPeerPW";

// The one setting that the rule for the old audit of administrators sets elsewhere.
inline constexpr const char* kAuditSwitch = "zor-audit";

}  // namespace tool

#endif  // CFGMIG_TOOL_LEDGER_MERGERULES_H
