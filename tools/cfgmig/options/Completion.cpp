#include "options/Completion.h"

namespace tool {

void writeCompletion(std::string_view shell, std::ostream& out) {
  if (shell == "bash") writeBashCompletion(out);
  if (shell == "zsh") writeZshCompletion(out);
  if (shell == "fish") writeFishCompletion(out);
}

}  // namespace tool
