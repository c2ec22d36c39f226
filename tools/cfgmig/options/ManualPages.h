// ManualPages.h -- the manual pages of section 1, made from the table of commands.

#ifndef CFGMIG_TOOL_OPTIONS_MANUALPAGES_H
#define CFGMIG_TOOL_OPTIONS_MANUALPAGES_H

#include <iosfwd>
#include <string>

#include "options/Command.h"

namespace tool {

// The page about the format of reports in JSON, which commands refer to.
inline constexpr const char* kReportPage = "cfgmig-report";

// The name of a command's page: "cfgmig-plan".
std::string pageOf(const Command& command);

void writeToolPage(std::ostream& out);
void writeCommandPage(const Command& command, std::ostream& out);

}  // namespace tool

#endif  // CFGMIG_TOOL_OPTIONS_MANUALPAGES_H
