// ToolProcess.h -- runs the built tool as a process.

#ifndef CFGMIG_TESTS_TOOL_TOOLPROCESS_H
#define CFGMIG_TESTS_TOOL_TOOLPROCESS_H

#include <sys/types.h>

#include <string>
#include <vector>

struct ToolResult {
  int status;  // the exit status; 128 and the signal's number when it was killed
  std::string out;
  std::string err;
};

struct ResourceLimit {
  int resource;  // RLIMIT_AS and its like
  unsigned long most;
};

struct ToolSetup {
  std::vector<std::string> arguments;
  std::vector<std::string> environment = {};  // "NAME=value", besides what the test has itself
  std::string directory = {};                 // where it runs; empty for that of the test
  std::string outTo = {};                     // a file for its standard output instead of ToolResult::out
  std::string input = {};                     // comes out of a pipe on its standard input; at most 64 KiB
  std::vector<ResourceLimit> limits = {};
};

// A tool that is running; its output goes to files, so that it never waits for a reader.
class ToolProcess {
 public:
  explicit ToolProcess(const ToolSetup& setup);
  ToolResult wait();
  pid_t id() const { return m_process; }
  bool leftImage() const { return m_leftImage; }  // of its memory, when it was killed; known after wait

 private:
  pid_t m_process = -1;
  int m_out = -1;
  int m_err = -1;
  bool m_leftImage = false;
};

// Runs it to its end.
ToolResult runTool(const std::vector<std::string>& arguments);
ToolResult runTool(const ToolSetup& setup);

#endif  // CFGMIG_TESTS_TOOL_TOOLPROCESS_H
