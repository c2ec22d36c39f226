#include "AccountText.h"

#include <algorithm>
#include <ostream>

#include "PrintableText.h"
#include "StoreCodes.h"

namespace tool {
namespace {

constexpr std::size_t kMostLosses = 7;  // shown unless the account is verbose

const char* fateName(Fate fate) {
  switch (fate) {
    case Fate::added:
      return "added";
    case Fate::merged:
      return "merged";
    case Fate::moved:
      return "moved";
    case Fate::rebuilt:
      return "rebuilt";
    case Fate::left:
      return "left";
    case Fate::skipped:
      return "skipped";
    case Fate::outside:
      return "outside";
  }
  return "";
}

std::string joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + ldtr::printable(name);
  return text;
}

std::string meaning(const Loss& loss) {
  return loss.code ? " (" + std::string(storeCodeText(*loss.code)) + ")" : std::string();
}

void writeLosses(const Account& account, const AccountStyle& style, std::ostream& out) {
  const std::size_t all = account.losses.size();
  out << "  losses   " << all << (style.preview && all > 0 ? " to be expected" : "") << '\n';
  const std::size_t shown = style.verbose || all <= kMostLosses ? all : kMostLosses - 1;
  for (std::size_t i = 0; i < shown; ++i) out << "    " << lossText(account.losses[i]) << '\n';
  if (shown < all) out << "    and " << all - shown << " more; -v shows them\n";
}

// The fates that few merges have are named only when there is such an entry.
void writeSums(const Account& account, std::size_t oldEntries, std::ostream& out) {
  out << "  entries  " << oldEntries << " old: " << account.of(Fate::added) << " added, " << account.of(Fate::merged)
      << " merged, " << account.of(Fate::moved) << " moved, ";
  if (account.of(Fate::rebuilt) > 0) out << account.of(Fate::rebuilt) << " rebuilt, ";
  if (account.of(Fate::left) > 0) out << account.of(Fate::left) << " left behind by rule, ";
  out << account.of(Fate::skipped) << " skipped\n";
}

void writeAddedByRule(const Account& account, std::ostream& out) {
  for (const std::string& dn : account.addedByRule) {
    out << "  by rule  " << ldtr::printableDn(dn) << " added, which no old entry stands for\n";
  }
}

void writeFates(const Account& account, const std::vector<std::string>& oldEntries, std::ostream& out) {
  out << "  entries of the old configuration:\n";
  for (std::size_t i = 0; i < oldEntries.size(); ++i) {
    std::string fate = fateName(account.fates[i]);
    fate.resize(std::max<std::size_t>(fate.size(), 8), ' ');
    out << "    " << fate << ' ' << ldtr::printableDn(oldEntries[i]) << '\n';
  }
}

void writeMessages(const Account& account, std::ostream& out) {
  if (account.messages.empty()) return;
  out << "  messages of the library:\n";
  for (const std::string& message : account.messages) out << "    " << message << '\n';
}

}  // namespace

std::string lossText(const Loss& loss) {
  std::string text = ldtr::printable(loss.method.empty() ? std::string("library") : loss.method) + ": ";
  switch (loss.kind) {
    case Loss::Kind::write:
      text += loss.operation;
      if (!loss.attribute.empty()) text += " of " + ldtr::printable(loss.attribute);
      text += " at " + ldtr::printableDn(loss.target);
      if (!loss.reason.empty()) text += " " + loss.reason;
      if (loss.code) text += ": code " + std::to_string(*loss.code) + meaning(loss);
      break;
    case Loss::Kind::endedEarly:
      text += ldtr::printableDn(loss.entry) + " was not carried to its end";
      if (!loss.reason.empty()) text += ": " + loss.reason + meaning(loss);
      break;
    case Loss::Kind::givenUp:
      text += ldtr::printableDn(loss.entry) + " was given up by its rule";
      if (!loss.reason.empty()) text += ": " + loss.reason + meaning(loss);
      break;
  }
  if (!loss.behind.empty()) {
    text += "; left behind: " + joined(loss.behind);
  } else if (loss.kind == Loss::Kind::write && loss.restNotCarried) {
    text += "; the rest of the entry was not carried";
  }
  return text;
}

void writeAccount(const Account& account, const std::vector<std::string>& oldEntries, const AccountStyle& style,
                  std::ostream& out) {
  writeSums(account, oldEntries.size(), out);
  writeAddedByRule(account, out);
  out << "  values   " << account.valuesWritten << " written; rules moved " << account.valuesMoved << " and dropped "
      << account.valuesDropped << '\n';
  writeLosses(account, style, out);
  if (!style.verbose) return;
  writeFates(account, oldEntries, out);
  writeMessages(account, out);
}

}  // namespace tool
