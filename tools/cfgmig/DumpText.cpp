// DumpText.cpp -- the content of a configuration as text.
//
//   cn=Front End, cn=Configuration
//     (line 12) CN=FRONT END,CN=CONFIGURATION
//     objectClass: top
//     cn: Front End
//     zor-slapdSetenv: A=1
//     zor-slapdSetenv (again): A=1
//     zor-picture (base64): /9g=
//     zor-slapdAdminPW (left out)
//
// What is in parentheses is no part of the file: an attribute's name holds none.

#include <ostream>
#include <string>

#include "Base64.h"
#include "Dump.h"
#include "PrintableText.h"
#include "Secrets.h"
#include "ShownText.h"

namespace tool {
namespace {

void appendValue(std::string& text, const cfgstore::SnapshotValue& value) {
  if (value.repeated) text += " (again)";
  if (cfgstore::isUtf8(value.value)) {
    text.append(value.value.empty() ? ":" : ": ").append(ldtr::printable(value.value));
  } else {
    text += " (base64): ";
    cfgstore::appendBase64(text, value.value);
  }
}

}  // namespace

std::size_t writeDumpText(const cfgstore::Snapshot& content, DumpSecrets secrets, std::ostream& out) {
  std::size_t leftOut = 0;
  bool isFirst = true;
  for (const cfgstore::SnapshotEntry& entry : content.entries()) {
    if (!isFirst) out << '\n';
    isFirst = false;
    out << ldtr::printableDn(entry.dn) << "\n  (line " << entry.line << ") " << ldtr::printableDn(entry.normal) << '\n';
    for (const cfgstore::SnapshotAttribute& attribute : content.attributesOf(entry)) {
      for (const cfgstore::SnapshotValue& value : content.valuesOf(attribute)) {
        std::string text = "  " + ldtr::printable(attribute.name);
        if (secrets == DumpSecrets::leaveOut && isSecret(attribute.name, value.value)) {
          text += " (left out)";
          ++leftOut;
        } else {
          appendValue(text, value);
        }
        out << text << '\n';
      }
    }
  }
  return leftOut;
}

}  // namespace tool
