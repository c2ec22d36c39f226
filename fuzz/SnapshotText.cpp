#include "SnapshotText.h"

#include <string_view>

namespace fuzz {
namespace {

void append(std::string& text, char kind, std::string_view part) {
  text.append(1, kind).append(std::to_string(part.size())).append(":").append(part).append("\n");
}

}  // namespace

std::string textOf(const cfgstore::Snapshot& snapshot) {
  std::string text;
  for (const cfgstore::SnapshotEntry& entry : snapshot.entries()) {
    append(text, 'd', entry.dn);
    append(text, 'n', entry.normal);
    for (const cfgstore::SnapshotAttribute& attribute : snapshot.attributesOf(entry)) {
      append(text, 'a', attribute.name);
      for (const cfgstore::SnapshotValue& value : snapshot.valuesOf(attribute)) {
        append(text, value.repeated ? 'r' : 'v', value.value);
      }
    }
  }
  return text;
}

}  // namespace fuzz
