// AccountText.h -- the account of a merge as the user reads it.

#ifndef CFGMIG_TOOL_ACCOUNTTEXT_H
#define CFGMIG_TOOL_ACCOUNTTEXT_H

#include <iosfwd>
#include <string>
#include <vector>

#include "MergeAccount.h"

namespace tool {

struct AccountStyle {
  bool verbose = false;  // all losses, the fate of each entry, the library's messages
  bool preview = false;  // speak of what would be
};

// Writes the account: the sums, then the losses, at most 12 lines unless it is verbose. `oldEntries` is the inventory
// that the account was made with. All names are in printable form, and no value is shown.
void writeAccount(const Account& account, const std::vector<std::string>& oldEntries, const AccountStyle& style,
                  std::ostream& out);

// One loss as a line: method, operation, entry, attribute, the store's code and what it means.
std::string lossText(const Loss& loss);

}  // namespace tool

#endif  // CFGMIG_TOOL_ACCOUNTTEXT_H
