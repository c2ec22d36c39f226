#include "report/html/Words.h"

#include <ostream>

namespace tool::html {

const std::array<WordKind, kWords> kWordKinds = {{
    {"fs", 's', "same", "the new configuration already held it"},
    {"fc", 'c', "carried", "added or set at the same DN"},
    {"fm", 'm', "moved", "set under another DN or attribute"},
    {"fd", 'd', "dropped", "a version rule removed it or left it behind by design"},
    {"fk", 'k', "kept-new", "the new server's own value stands by design"},
    {"fx", 'x', "cleaned", "removed or rewritten by a clean-up"},
    {"fl", 'l', "lost", "it should have arrived and did not"},
    {"on", 'n', "new", "the new server's own"},
    {"oc", 'c', "carried", "from the old configuration, at the same DN"},
    {"om", 'm', "moved", "from another DN or attribute of the old one"},
    {"oa", 'a', "added-by-rule", "written by a rule"},
    {"rr", 'r', "replaced", "a value of the new server that is no longer there"},
}};

std::ostream& operator<<(std::ostream& out, Marked word) {
  const WordKind& kind = kWordKinds[word.word];
  return out << "<b class=\"w w-" << kind.sign << "\">" << kind.name << "</b>";
}

std::ostream& operator<<(std::ostream& out, Classes classes) {
  for (std::size_t word = 0; word < kWords; ++word) {
    if ((classes.words & bitOf(word)) != 0) out << ' ' << kWordKinds[word].id;
  }
  return out;
}

}  // namespace tool::html
