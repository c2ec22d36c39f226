// SettingFindings.cpp -- settings of the result that cannot work as they stand: marks of rules, sealed secrets.

#include <algorithm>
#include <iterator>

#include "Secrets.h"
#include "ShownText.h"
#include "finding/Finder.h"

namespace tool {
namespace {

using cfgstore::Snapshot;

constexpr std::string_view kPendingClass = "ZOR-SLAPDPENDINGMIGRATION";
constexpr std::string_view kPendingInfo = "ZOR-SLAPDMIGRATIONINFO";
constexpr std::string_view kCredentials[] = {"zor-slapdMasterDN", "zor-slapdMasterPW"};

// How the scheme in front of a sealed value begins: "{sealed}...", "{AES256}...". Schemes that no key belongs to, like
// {SSHA} and {crypt}, are not among them: every server can check a password against such a value.
constexpr std::string_view kSealingSchemes[] = {"sealed", "aes", "des", "3des", "tripledes", "rc4", "imask", "enc"};

bool hasSealingScheme(std::string_view value) {
  if (!value.starts_with('{') || value.find('}') == std::string_view::npos) return false;
  const std::string_view scheme = value.substr(1, value.find('}') - 1);
  return std::any_of(std::begin(kSealingSchemes), std::end(kSealingSchemes), [&](std::string_view each) {
    return scheme.size() >= each.size() && isSameName(scheme.substr(0, each.size()), each);
  });
}

// Passwords are typed: what holds bytes that nobody can type has been sealed.
bool isTypeable(std::string_view value) {
  return cfgstore::isUtf8(value) && std::none_of(value.begin(), value.end(), [](char character) {
           const auto byte = static_cast<unsigned char>(character);
           return byte < 0x20 || byte == 0x7f;
         });
}

bool isSealed(std::string_view attribute, std::string_view value) {
  return hasSealingScheme(value) || (isSecret(attribute, "") && !isTypeable(value));
}

}  // namespace

void findPendingMigrations(const Facts& facts, FindingList& found) {
  const Snapshot& result = facts.ledger.result;
  for (std::uint32_t i = 0; i < result.values().size(); ++i) {
    const cfgstore::SnapshotValue& value = result.values()[i];
    const std::string_view attribute = result.attributeOf(value).name;
    const bool isMark = isSameName(attribute, "objectClass") && isSameName(value.value, kPendingClass);
    if (isMark || isSameName(attribute, kPendingInfo)) found.addValue(Content::result, i);
  }
}

void findSealedSecrets(const Facts& facts, FindingList& found) {
  const Snapshot& result = facts.ledger.result;
  for (ValueId i = 0; i < result.values().size(); ++i) {
    if (!isFromOld(facts.ledger.resultValues[i])) continue;
    const cfgstore::SnapshotValue& value = result.values()[i];
    if (isSealed(result.attributeOf(value).name, value.value)) found.addValue(Content::result, i);
  }
}

void findMastersWithoutCredentials(const Facts& facts, FindingList& found) {
  const Ledger& ledger = facts.ledger;
  for (std::uint32_t entry = 0; entry < ledger.oldEntries.size(); ++entry) {
    const EntryRow& row = ledger.oldEntries[entry];
    if (row.fate != EntryFate::rebuilt) continue;
    const std::uint32_t target = ledger.result.findEntry(row.target);
    if (target == Snapshot::kNone) continue;
    const bool isComplete = std::all_of(
        std::begin(kCredentials), std::end(kCredentials),
        [&](std::string_view attribute) { return ledger.result.findAttribute(target, attribute) != Snapshot::kNone; });
    if (!isComplete) found.addEntry(Content::result, target);
  }
}

}  // namespace tool
