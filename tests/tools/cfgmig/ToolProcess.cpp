#include "ToolProcess.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>

#include "CapturedOutput.h"

namespace {

// A pipe that holds the text, and whose other end is closed.
int pipeWith(const std::string& text) {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe for the tool's input");
  if (::write(ends[1], text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
    throw std::runtime_error("the tool's input does not fit into a pipe");
  }
  ::close(ends[1]);
  return ends[0];
}

// In the child: never returns.
[[noreturn]] void become(const ToolSetup& setup, int out, int err) {
  const int in = setup.input.empty() ? ::open("/dev/null", O_RDONLY) : pipeWith(setup.input);
  ::dup2(in, STDIN_FILENO);
  ::dup2(out, STDOUT_FILENO);
  ::dup2(err, STDERR_FILENO);
  if (!setup.directory.empty() && ::chdir(setup.directory.c_str()) != 0) ::_exit(126);
  ::unsetenv("LDTR_EVENTS");
  ::unsetenv("LDTR_FILE");
  ::setenv("CFGMIG_STATE_DIRECTORY", "/tmp/cfgmig-test-state", 1);
  std::vector<std::string> environment = setup.environment;
  for (std::string& variable : environment) ::putenv(variable.data());
  std::vector<std::string> words = {CFGMIG_TOOL};
  words.insert(words.end(), setup.arguments.begin(), setup.arguments.end());
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  for (const ResourceLimit& limit : setup.limits) {
    const struct rlimit both { limit.most, limit.most };
    ::setrlimit(static_cast<__rlimit_resource>(limit.resource), &both);
  }
  ::execv(CFGMIG_TOOL, pointers.data());
  ::_exit(127);
}

}  // namespace

ToolProcess::ToolProcess(const ToolSetup& setup)
    : m_out(setup.outTo.empty() ? temporaryFile() : ::open(setup.outTo.c_str(), O_WRONLY | O_CLOEXEC)),
      m_err(temporaryFile()) {
  m_process = ::fork();
  if (m_process < 0) throw std::runtime_error("the tool cannot be started");
  if (m_process == 0) become(setup, m_out, m_err);
}

ToolResult ToolProcess::wait() {
  int status = 0;
  while (::waitpid(m_process, &status, 0) < 0 && errno == EINTR) {
  }
  m_leftImage = WIFSIGNALED(status) && WCOREDUMP(status);
  const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  std::string out = readAndClose(m_out);
  std::string err = readAndClose(m_err);
  return {code, std::move(out), std::move(err)};
}

ToolResult runTool(const ToolSetup& setup) { return ToolProcess(setup).wait(); }

ToolResult runTool(const std::vector<std::string>& arguments) { return runTool(ToolSetup{arguments}); }
