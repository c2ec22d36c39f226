// Failure.h -- how a command ends early: with a status and what to tell the user.

#ifndef CFGMIG_TOOL_FAILURE_H
#define CFGMIG_TOOL_FAILURE_H

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "ExitStatus.h"

namespace tool {

// Each line goes to standard error as it is, after the name of the tool. Text that comes from a file or the command
// line has to be in printable form already, and no line may hold an attribute value.
class Failure : public std::runtime_error {
 public:
  Failure(ExitStatus status, std::vector<std::string> lines)
      : std::runtime_error(lines.empty() ? "" : lines.front()), m_status(status), m_lines(std::move(lines)) {}
  Failure(ExitStatus status, const std::string& line) : Failure(status, std::vector<std::string>{line}) {}

  ExitStatus status() const { return m_status; }
  const std::vector<std::string>& lines() const { return m_lines; }

 private:
  ExitStatus m_status;
  std::vector<std::string> m_lines;
};

}  // namespace tool

#endif  // CFGMIG_TOOL_FAILURE_H
