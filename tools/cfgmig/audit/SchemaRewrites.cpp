#include "audit/SchemaRewrites.h"

#include <string>
#include <unordered_map>
#include <vector>

#include "audit/Rules.h"

namespace tool::auditing {
namespace {

// The name under which a schema file is copied: what follows the last slash or, where there is none, the last
// backslash. Empty for a value that has neither.
std::string_view fileNameIn(std::string_view value) {
  const std::size_t slash = value.find_last_of('/');
  const std::size_t end = slash != std::string_view::npos ? slash : value.find_last_of('\\');
  return end == std::string_view::npos ? std::string_view() : value.substr(end + 1);
}

// The schema files that the result includes, and where.
std::unordered_map<std::string_view, ValueId> includedBy(const cfgstore::Snapshot& result) {
  std::unordered_map<std::string_view, ValueId> included;
  const Id entry = result.findEntry(kSchemaEntry);
  const Id attribute = entry == kNone ? kNone : result.findAttribute(entry, kIncludeList);
  if (attribute == kNone) return included;
  const cfgstore::SnapshotAttribute& list = result.attributes()[attribute];
  for (ValueId value = list.firstValue; value < list.firstValue + list.values; ++value) {
    included.emplace(result.values()[value].value, value);
  }
  return included;
}

}  // namespace

void predictSchemaRewrites(std::string_view directory, const cfgstore::Snapshot& result, Prediction& prediction,
                           Audit& audit) {
  Content& content = prediction.content;
  const NameId name = prediction.names.of(kIncludeList);
  const Id entry = content.findEntry(kSchemaEntry);
  const Id attribute = entry == kNone ? kNone : content.findAttribute(entry, name);
  if (attribute == kNone) return;
  const auto included = includedBy(result);
  std::vector<Content::Rewrite> rewrites;
  for (Id id = content.attribute(attribute).first; id != kNone; id = content.value(id).next) {
    const Content::Value& value = content.value(id);
    if (containsOneOf(value.text, kServersOwnFiles)) continue;
    const std::string_view file = fileNameIn(value.text);
    const std::string copy = std::string(directory).append("/").append(file);
    if (copy == value.text && !file.empty()) continue;
    if (const auto there = included.find(value.text); there != included.end()) {
      audit.schemaFilesLeft.push_back(there->second);
    } else if (!file.empty()) {
      const bool isOld = value.from.source == Source::carried || value.from.source == Source::moved;
      rewrites.push_back({id, audit.texts.emplace_back(copy), {Source::rule, isOld ? value.from.id : kNone}});
    }
  }
  content.rewriteValues(entry, name, rewrites);
}

}  // namespace tool::auditing
