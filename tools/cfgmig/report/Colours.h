// Colours.h -- whether a terminal wants colours.

#ifndef CFGMIG_TOOL_REPORT_COLOURS_H
#define CFGMIG_TOOL_REPORT_COLOURS_H

namespace tool {

// True when the descriptor is a terminal that knows colours, and the environment does not forbid them: NO_COLOR is
// absent or empty, TERM is there and not "dumb".
bool wantsColours(int descriptor);

}  // namespace tool

#endif  // CFGMIG_TOOL_REPORT_COLOURS_H
