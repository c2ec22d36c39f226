#include "TracedTool.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <stdexcept>
#include <utility>

#include "CapturedOutput.h"

namespace {

std::string nameOfLog() {
  return (std::filesystem::temp_directory_path() / ("cfgmig-trace-" + std::to_string(::getpid()))).string();
}

pid_t startProcess(std::vector<std::string> words, int out, int err) {
  const pid_t process = ::fork();
  if (process < 0) throw std::runtime_error("strace cannot be started");
  if (process > 0) return process;
  ::dup2(::open("/dev/null", O_RDONLY), STDIN_FILENO);
  ::dup2(out, STDOUT_FILENO);
  ::dup2(err, STDERR_FILENO);
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  ::setenv("CFGMIG_STATE_DIRECTORY", ("/tmp/cfgmig-traced-" + std::to_string(::getppid())).c_str(), 1);
  ::execvp(pointers[0], pointers.data());
  ::_exit(127);
}

int statusOf(pid_t process) {
  int status = 0;
  while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

std::string TracedTool::whyNot() {
  const int out = temporaryFile();
  const int err = temporaryFile();
  const int status =
      statusOf(startProcess({"strace", "-o", "/dev/null", "-e", "inject=fsync:error=EIO", "true"}, out, err));
  ::close(out);
  const std::string said = readAndClose(err);
  if (status == 0) return "";
  return status == 127 ? "strace is not installed" : "strace cannot trace here: " + said;
}

void TracedTool::start(const std::vector<std::string>& options) {
  std::vector<std::string> words = {"strace"};
  words.insert(words.end(), options.begin(), options.end());
  words.emplace_back(CFGMIG_TOOL);
  words.insert(words.end(), m_arguments.begin(), m_arguments.end());
  m_outFile = temporaryFile();
  m_errFile = temporaryFile();
  m_process = startProcess(words, m_outFile, m_errFile);
}

int TracedTool::wait() {
  const int status = statusOf(m_process);
  m_out = readAndClose(m_outFile);
  m_err = readAndClose(m_errFile);
  return status;
}

std::vector<SystemCall> TracedTool::callsFromTheFirstNewFile() {
  const std::string log = nameOfLog();
  start({"-o", log, "-e", "trace=%file,%desc"});
  if (const int status = wait(); status != 0) throw std::runtime_error("the tool failed: " + m_err);
  std::vector<SystemCall> calls;
  std::map<std::string, int> numbers;
  bool created = false;
  std::ifstream in(log);
  const std::regex pattern("^([a-z0-9_]+)\\(.*");
  for (std::string line; std::getline(in, line);) {
    std::smatch match;
    if (!std::regex_match(line, match, pattern)) continue;
    const std::string name = match[1];
    const int number = ++numbers[name];
    created = created || line.find("O_EXCL") != std::string::npos;
    if (created && name != "mmap") calls.push_back({name, number, line});
  }
  std::filesystem::remove(log);
  return calls;
}

int TracedTool::runWith(const SystemCall& call, const std::string& what) {
  start({"-o", "/dev/null", "-e", "trace=" + call.name, "-e",
         "inject=" + call.name + ":" + what + ":when=" + std::to_string(call.number)});
  return wait();
}

void TracedTool::startDelaying(const std::string& calls, int seconds, const std::string& which) {
  start({"-o", "/dev/null", "-e", "trace=" + calls, "-e",
         "inject=" + calls + ":delay_enter=" + std::to_string(seconds * 1000000) + which});
}
