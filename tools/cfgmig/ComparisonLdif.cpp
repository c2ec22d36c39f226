// ComparisonLdif.cpp -- a comparison as LDIF.

#include <span>

#include "Comparison.h"
#include "LineWriter.h"
#include "PrintableText.h"
#include "Threads.h"

namespace tool {
namespace {

constexpr std::size_t kBytesOfAnEntry = 500;  // roughly

std::string ldifOf(const Comparison& comparison, std::span<const ComparedEntry> entries) {
  const cfgstore::Habits habits;
  std::string text;
  for (const ComparedEntry& entry : entries) {
    if (!text.empty()) text += '\n';
    appendLine(text, habits, "dn", entry.dn);
    if (entry.attributes == 0) text += "# nothing of it is left; the new configuration's entry holds more\n";
    for (const ComparedAttribute& attribute : comparison.attributesOf(entry)) {
      for (const std::string_view value : comparison.valuesOf(attribute)) {
        appendLine(text, habits, attribute.name, value);
      }
      if (attribute.redacted == 0) continue;
      text += "# " + ldtr::printable(attribute.name) + ": redacted, " + std::to_string(attribute.redacted) +
              (attribute.redacted == 1 ? " value\n" : " values\n");
    }
  }
  return text;
}

}  // namespace

std::string ldifOf(const Comparison& comparison) {
  const std::span<const ComparedEntry> entries = comparison.entries;
  const std::size_t half = entries.size() / 2;
  auto pending =
      cfgstore::doBeside(entries.size() * kBytesOfAnEntry, [&] { return ldifOf(comparison, entries.subspan(half)); });
  std::string text = ldifOf(comparison, entries.first(half));
  if (!text.empty()) text += '\n';
  return text += pending.get();
}

}  // namespace tool
