#include "Why.h"

#include <utility>

#include "StoreCodes.h"
#include "TraceControl.h"
#include "TracedMethod.h"
#include "ValueFinder.h"

namespace tool {
namespace {

struct Words {
  Why why;
  const char* words;  // "%" stands for the store's code and what it means
};

constexpr Words kWords[] = {
    {Why::takesOut, "takes the setting out of the old configuration, so that it is not carried"},
    {Why::setsElsewhere, "sets the old server's value where the new server has the setting"},
    {Why::carries, "carries the values of the old entry"},
    {Why::creates, "creates the entry"},
    {Why::buildsAnew, "builds the entry anew"},
    {Why::addsItsOwn, "adds what the new server needs"},
    {Why::addsToOld, "adds to the old entry what the new server needs, before it is carried"},
    {Why::cleansUp, "cleans the result up"},

    {Why::held, "the new configuration has the same already"},
    {Why::carriedWithEntry, "the entry is added with all its values"},
    {Why::carriedValue, "the old server's value is carried"},
    {Why::carriedIntoRebuilt, "the entry is built anew with this value"},
    {Why::arrivedBefore, "another step has set the same value there"},
    {Why::movedWithEntry, "the entry has another name on the new server, and its value goes with it"},
    {Why::movedSetting, "the new server has the setting elsewhere"},
    {Why::movedIdentity, "the other server counts as a master now"},
    {Why::dropped, "the old server's setting is not carried: the new server's own stands, if it has one"},
    {Why::droppedButPart, "only a part of the value is carried, as a setting of its own"},
    {Why::leftByRule, "the rule for this entry carries other settings only"},
    {Why::serversOwn, "the new server's own stands"},
    {Why::cleanedUp, "removed when the result was cleaned up"},
    {Why::rewritten, "rewritten when the result was cleaned up"},

    {Why::refused, "the new configuration refused the value: %"},
    {Why::refusedNoEntry, "the new configuration has no entry to set the value in: %"},
    {Why::partRefused, "the part of the value that was to be set elsewhere was refused: %"},
    {Why::onlyFirst, "the setting has several values and is not one of the lists: only its first value is carried"},
    {Why::onlyFirstRead, "the setting has several values, and the rule takes only the first"},
    {Why::overwritten, "a later step put another value in its place"},
    {Why::noTarget, "the new configuration has no entry to carry the values to"},
    {Why::absentEnds, "the new entry lacks this setting, which ends the transfer of the entry"},
    {Why::behindAbsent, "the transfer of the entry ended before it, at a setting that the new entry lacks"},
    {Why::behindRefused, "the transfer of the entry ended before it, at a value that was refused"},
    {Why::noNamingValue, "the entry has no CN, and cannot be created without one"},
    {Why::noObjectClass, "the entry has no object class, and cannot be created without one"},
    {Why::entryRefused, "the entry could not be created: %"},
    {Why::givenUp, "the rule for the entry gave it up"},
    {Why::givenUpNoAdditions, "the rule gives the entry up, since it has no zor-slapdSchemaAdditions"},
    {Why::noIdentity, "the rule ends before it, since the entry names neither a master nor a peer"},
    {Why::noPassword, "the rule ends before it, since the entry holds no password of its master or peer"},
    {Why::rebuildEnded, "the rule ended before it: %"},
    {Why::outside, "the entry is not below CN=CONFIGURATION, and no migration looks at it"},
    {Why::endedEarly, "the transfer of the entry ended before it"},

    {Why::newServers, "the new server's own"},
    {Why::addedByRule, "written by the rule"},
    {Why::rewrittenValue, "takes the place of a value that was cleaned up"},
    {Why::replacedByOld, "the old server's value takes its place"},
    {Why::replacedByRule, "the rule's value takes its place"},
    {Why::lineRepeated, "an equal line above it is enough"},

    {Why::entryAdded, "only the old configuration has the entry"},
    {Why::entryMerged, "both configurations have the entry"},
    {Why::entryMoved, "the entry has another name on the new server"},
    {Why::entryRebuilt, "the entry is built anew with the identity of its master or peer"},
    {Why::entryLeft, "the rule carries nothing of the entry"},
    {Why::entryPartMoved, "the rule sets some of its values elsewhere and leaves the rest"},
};

// What a rule says of one setting, in place of the general words.
struct RuleWords {
  unsigned long method;
  Why why;
  const char* attribute;  // null: of every one
  const char* words;
};

constexpr const char* kOwnDatabase = "the new server has a database of its own";
constexpr const char* kOwnLimit = "the limits of searches are the new server's";
constexpr const char* kOwnPermission = "who may ask for sorted or paged results is the new server's to say";
constexpr const char* kOwnLog = "where the logs go is the new server's to say";
constexpr const char* kOwnPort = "the ports are the new server's";
constexpr const char* kOwnAudit = "the audit log and its form are the new server's";
constexpr const char* kServersFact = "the value says what the server can do, and is the new server's";
constexpr const char* kMark = "marks what still has to be migrated by hand";
constexpr const char* kMarkedEntry = "the entry is built with these object classes, one of which marks it as pending";

constexpr RuleWords kRuleWords[] = {
    {traced::kAddTo41, Why::leftByRule, nullptr, "the old change log is left behind: it has to be set up anew"},
    {traced::kMergeIn41, Why::dropped, "zor-slapdPlugin", "the old server's change-log plug-in is not registered"},
    {traced::kMergeIn41, Why::dropped, nullptr, kOwnDatabase},

    {traced::kMergeIn51, Why::dropped, "zor-slapdSortSrchAllowNonAdmin", kOwnPermission},
    {traced::kMergeIn51, Why::dropped, "zor-slapdPagedResAllowNonAdmin", kOwnPermission},
    {traced::kMergeIn51, Why::dropped, "zor-slapdPagedResAllowAnon", kOwnPermission},
    {traced::kMergeIn51, Why::dropped, "zor-slapdSortSrchAllowAnon", kOwnPermission},
    {traced::kMergeIn51, Why::dropped, "zor-slapdErrorLog", kOwnLog},
    {traced::kMergeIn51, Why::dropped, "zor-slapdIdleTimeOut",
     "the time limit of idle connections is the new server's"},
    {traced::kMergeIn51, Why::dropped, "zor-slapdSetenv", "the new server has settings of its own for its caches"},
    {traced::kMergeIn51, Why::dropped, nullptr, kOwnLimit},

    {traced::kAddTo52, Why::addedByRule, nullptr,
     "a change log that the new server did not have keeps its entries for ever"},
    {traced::kMergeIn52, Why::dropped, "zor-slapdSupportedWebAdmVersion", kServersFact},
    {traced::kMergeIn52, Why::dropped, "zor-slapdACLAccess",
     "who may read access control lists is the new server's to say"},
    {traced::kMergeIn52, Why::dropped, nullptr, kOwnLimit},

    {traced::kAddTo60, Why::dropped, nullptr, kOwnAudit},
    {traced::kAddTo60, Why::leftByRule, nullptr, "of the audit of administrators only the switch is carried"},
    {traced::kProcessIncSchema, Why::dropped, nullptr, "the new server has its own of this schema file"},
    {traced::kMergeIn60, Why::dropped, "zor-slapdSupportedWebAdmVersion", kServersFact},
    {traced::kMergeIn60, Why::dropped, "zor-slapdErrorLog", kOwnLog},
    {traced::kMergeIn60, Why::dropped, "zor-slapdTraceMessageLog", kOwnLog},
    {traced::kMergeIn60, Why::dropped, "zor-slapdBulkloadErrors", kOwnLog},
    {traced::kMergeIn60, Why::dropped, "zor-slapdCLIErrors", kOwnLog},
    {traced::kMergeIn60, Why::dropped, "zor-slapdSortSrchAllowNonAdmin", kOwnPermission},
    {traced::kMergeIn60, Why::dropped, "zor-slapdPagedResAllowNonAdmin", kOwnPermission},
    {traced::kMergeIn60, Why::dropped, "zor-slapdPort", kOwnPort},
    {traced::kMergeIn60, Why::dropped, "zor-slapdSecurePort", kOwnPort},
    {traced::kMergeIn60, Why::dropped, "zor-slapdSysLogLevel",
     "the log level that every server starts with is not carried"},
    {traced::kMergeIn60, Why::dropped, "zor-slapdPwEncryption", "passwords are not masked any more"},
    {traced::kMergeIn60, Why::dropped, "zor-slapdPlugin",
     "the new server replicates without blocking, and without this plug-in"},
    {traced::kMergeIn60, Why::dropped, "zor-slapdSchemaAdditions",
     "the file of schema changes made at run time is the old server's"},
    {traced::kMergeIn60, Why::addedByRule, "zor-slapdReplMaxErrors",
     "was an argument of the non-blocking replication plug-in"},
    {traced::kMergeIn60, Why::droppedButPart, "zor-slapdPlugin",
     "the new server replicates without this plug-in; its limit of skipped errors is a setting of its own now"},

    {traced::kAddCfgEntry, Why::addedByRule, nullptr,
     "an entry with one object class is given the one that all entries have"},
    {traced::kReplAddEntry, Why::leftByRule, nullptr,
     "the entry is built anew with the identity of its master or peer, and nothing else"},
    {traced::kReplAddEntry, Why::addedByRule, "OBJECTCLASS", kMarkedEntry},
    {traced::kReplAddEntry, Why::addedByRule, "CN", "the entry is built anew"},
    {traced::kReplAddEntry, Why::addedByRule, nullptr, kMark},
    {traced::kCheck51, Why::addedByRule, "OBJECTCLASS", kMarkedEntry},
    {traced::kCheck51, Why::addedByRule, "CN", "a server without this entry was a master itself"},
    {traced::kCheck51, Why::addedByRule, nullptr, kMark},
    {traced::kCheckSchemaFiles, Why::rewritten, nullptr, "the schema file was copied, and the list names the copy"},
    {traced::kCheckSchemaFiles, Why::rewrittenValue, nullptr, "the copy of a schema file"},
};

const char* wordsOf(unsigned long method, Why why, std::string_view attribute) {
  for (const RuleWords& row : kRuleWords) {
    if (row.method != method || row.why != why) continue;
    if (row.attribute == nullptr || isSameName(row.attribute, attribute)) return row.words;
  }
  for (const Words& row : kWords) {
    if (row.why == why) return row.words;
  }
  return nullptr;
}

std::string filledIn(std::string words, int code) {
  const std::size_t mark = words.find('%');
  if (mark != std::string::npos) {
    words.replace(mark, 1, "code " + std::to_string(code) + ", " + storeCodeText(code));
  }
  return words;
}

}  // namespace

ReasonId Reasons::of(unsigned long method, Why why, int code, std::string_view attribute) {
  if (!attribute.empty()) return find(method, why, code, attribute);
  const std::uint64_t key = static_cast<std::uint64_t>(static_cast<std::uint32_t>(code)) << 40U ^
                            std::uint64_t{method} << 8U ^ static_cast<std::uint64_t>(why);
  const auto [known, isNew] = m_general.try_emplace(key, 0);
  if (isNew) known->second = find(method, why, code, {});
  return known->second;
}

ReasonId Reasons::find(unsigned long method, Why why, int code, std::string_view attribute) {
  const char* const words = wordsOf(method, why, attribute);
  if (words == nullptr) return 0;
  const auto next = static_cast<ReasonId>(m_reasons.size());
  const auto [known, isNew] = m_known.try_emplace(Key{method, words, code}, next);
  if (isNew) {
    const char* const name = ldtr::methodName(method);
    m_reasons.push_back({name == nullptr ? std::string() : std::string(name), filledIn(words, code)});
  }
  return known->second;
}

ReasonId Reasons::namedTwice(ReasonId reason) {
  const auto next = static_cast<ReasonId>(m_reasons.size());
  const auto [known, isNew] = m_twice.try_emplace(reason, next);
  if (isNew) {
    Reason twice = m_reasons[reason];
    twice.words.append("; ").append(kSchemaFileNamedTwice);
    m_reasons.push_back(std::move(twice));
  }
  return known->second;
}

}  // namespace tool
