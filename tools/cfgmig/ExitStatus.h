// ExitStatus.h -- what the tool tells the program that started it, the same for every command.

#ifndef CFGMIG_TOOL_EXITSTATUS_H
#define CFGMIG_TOOL_EXITSTATUS_H

namespace tool {

enum class ExitStatus : int {
  done = 0,       // done and nothing lost; also nothing to do, and a preview
  failed = 1,     // the target is unchanged
  usage = 2,      // the command line is wrong; nothing was read
  differs = 3,    // differences, changes or warnings exist; only where the command line asks for this status
  blocked = 4,    // the target has changed meanwhile or is in use; nothing was written
  lost = 5,       // written, but something was lost or needs a person
  notUndone = 6,  // failed, and the target could not be restored
};

}  // namespace tool

#endif  // CFGMIG_TOOL_EXITSTATUS_H
