// PathFindings.cpp -- settings of the result that name files: plug-ins, schema files, logs.

#include <algorithm>
#include <map>

#include "finding/Finder.h"
#include "finding/InstallationPaths.h"

namespace tool {
namespace {

using cfgstore::SnapshotValue;

constexpr std::string_view kPlugIn = "zor-slapdPlugin";
constexpr std::string_view kIncludeSchema = "zor-slapdIncludeSchema";
constexpr std::string_view kSchemaAdditions = "zor-slapdSchemaAdditions";
constexpr std::string_view kBlanks = " \t";

// The library of "preoperation /opt/acme/lib/libacme.so acmeInit cn=x": the second word; empty when there is none.
std::string_view libraryOf(std::string_view plugIn) {
  std::size_t at = plugIn.find_first_not_of(kBlanks);
  at = plugIn.find_first_of(kBlanks, at == std::string_view::npos ? plugIn.size() : at);
  at = plugIn.find_first_not_of(kBlanks, at == std::string_view::npos ? plugIn.size() : at);
  if (at == std::string_view::npos) return {};
  return plugIn.substr(at, plugIn.find_first_of(kBlanks, at) - at);
}

bool isThere(const Facts& facts, std::string_view path) { return facts.context.fileExists(std::string(path)); }

bool isFromOld(const Facts& facts, ValueId value) { return tool::isFromOld(facts.ledger.resultValues[value]); }

// "V3.user.at" of "/opt/zor/6.0/etc/V3.user.at"
std::string_view fileName(std::string_view path) { return path.substr(path.rfind('/') + 1); }

}  // namespace

void findPlugInsOfOldInstallation(const Facts& facts, FindingList& found) {
  forEachValueOf(facts.ledger.result, kPlugIn, [&](ValueId id, const SnapshotValue& value) {
    if (isFromOld(facts, id) && namesPathIn(libraryOf(value.value), facts.oldInstallation)) {
      found.addValue(Content::result, id);
    }
  });
}

void findPathsIntoOldInstallation(const Facts& facts, FindingList& found) {
  const cfgstore::Snapshot& result = facts.ledger.result;
  for (ValueId id = 0; id < result.values().size(); ++id) {
    const SnapshotValue& value = result.values()[id];
    if (!isFromOld(facts, id) || !namesPathIn(value.value, facts.oldInstallation)) continue;
    const bool isPlugIn = isSameName(result.attributeOf(value).name, kPlugIn);
    if (!isPlugIn || !namesPathIn(libraryOf(value.value), facts.oldInstallation)) found.addValue(Content::result, id);
  }
}

void findMissingPlugInLibraries(const Facts& facts, FindingList& found) {
  if (!facts.context.fileExists) return;
  forEachValueOf(facts.ledger.result, kPlugIn, [&](ValueId id, const SnapshotValue& value) {
    const std::string_view library = libraryOf(value.value);
    if (!isFromOld(facts, id) || !library.starts_with('/') || namesPathIn(library, facts.oldInstallation)) return;
    if (!isThere(facts, library)) found.addValue(Content::result, id);
  });
}

// The server's own files are looked for only where one of them is: elsewhere this is not the server's machine.
void findMissingSchemaFiles(const Facts& facts, FindingList& found) {
  if (!facts.context.fileExists) return;
  std::vector<ValueId> missing;
  bool isServersMachine = false;
  for (const std::string_view attribute : {kIncludeSchema, kSchemaAdditions}) {
    forEachValueOf(facts.ledger.result, attribute, [&](ValueId id, const SnapshotValue& value) {
      if (value.value.empty()) return;
      if (!isThere(facts, value.value)) {
        missing.push_back(id);
      } else if (!isFromOld(facts, id)) {
        isServersMachine = true;
      }
    });
  }
  for (const ValueId id : missing) {
    if (isServersMachine || isFromOld(facts, id)) found.addValue(Content::result, id);
  }
}

// By the name of the file, since the old server's "V3.user.at" defines again what the new one's does.
void findSchemaFilesTwice(const Facts& facts, FindingList& found) {
  std::map<std::pair<std::uint32_t, std::string_view>, std::vector<ValueId>> files;  // by attribute and name
  forEachValueOf(facts.ledger.result, kIncludeSchema, [&](ValueId id, const SnapshotValue& value) {
    if (!value.value.empty()) files[{value.attribute, fileName(value.value)}].push_back(id);
  });
  std::vector<ValueId> twice;
  for (const auto& [file, values] : files) {
    if (values.size() > 1) twice.insert(twice.end(), values.begin(), values.end());
  }
  std::sort(twice.begin(), twice.end());
  for (const ValueId id : twice) found.addValue(Content::result, id);
}

}  // namespace tool
