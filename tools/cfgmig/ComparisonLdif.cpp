// ComparisonLdif.cpp -- a comparison as LDIF.

#include "Comparison.h"
#include "LineWriter.h"
#include "PrintableText.h"

namespace tool {

std::string ldifOf(const Comparison& comparison) {
  const cfgstore::Habits habits;
  std::string text;
  for (const ComparedEntry& entry : comparison.entries) {
    if (!text.empty()) text += '\n';
    text += writeLine(habits, "dn", entry.dn);
    if (entry.attributes.empty()) text += "# nothing of it is left; the new configuration's entry holds more\n";
    for (const ComparedAttribute& attribute : entry.attributes) {
      for (const std::string& value : attribute.values) text += writeLine(habits, attribute.name, value);
      if (attribute.redacted == 0) continue;
      text += "# " + ldtr::printable(attribute.name) + ": redacted, " + std::to_string(attribute.redacted) +
              (attribute.redacted == 1 ? " value\n" : " values\n");
    }
  }
  return text;
}

}  // namespace tool
