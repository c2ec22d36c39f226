// TracedTool.h -- runs the built tool under strace, which makes system calls fail or ends the tool at one of them.

#ifndef CFGMIG_TESTS_TOOL_TRACEDTOOL_H
#define CFGMIG_TESTS_TOOL_TRACEDTOOL_H

#include <sys/types.h>

#include <string>
#include <vector>

struct SystemCall {
  std::string name;
  int number;  // counted from 1 among the calls of this name
  std::string text;
};

class TracedTool {
 public:
  // Why the tool cannot be traced here; empty if it can.
  static std::string whyNot();

  explicit TracedTool(std::vector<std::string> arguments) : m_arguments(std::move(arguments)) {}

  // Runs it to its end, and returns the calls to do with files that it made from the first one on that creates a file.
  std::vector<SystemCall> callsFromTheFirstNewFile();

  // Runs it to its end with `what` done to a call: "error=EIO", "signal=KILL". Returns the exit status; 128 and the
  // signal's number when it was killed.
  int runWith(const SystemCall& call, const std::string& what);

  // Starts it; each of the calls, or this one, is entered `seconds` later than the tool would. `which` of them, as
  // strace has it: ":when=2"; empty for all.
  void startDelaying(const std::string& calls, int seconds, const std::string& which = "");
  void startDelaying(const SystemCall& call, int seconds) {
    startDelaying(call.name, seconds, ":when=" + std::to_string(call.number));
  }
  int wait();

  const std::string& out() const { return m_out; }
  const std::string& err() const { return m_err; }

 private:
  void start(const std::vector<std::string>& options);

  std::vector<std::string> m_arguments;
  pid_t m_process = -1;
  int m_outFile = -1;
  int m_errFile = -1;
  std::string m_out;
  std::string m_err;
};

#endif  // CFGMIG_TESTS_TOOL_TRACEDTOOL_H
