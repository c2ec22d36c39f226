// Child.h -- work that is done in a process of its own, because it may end it.

#ifndef CFGMIG_TESTS_LIBCFGSTORE_CHILD_H
#define CFGMIG_TESTS_LIBCFGSTORE_CHILD_H

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <exception>
#include <functional>
#include <stdexcept>
#include <string>

namespace cfgstore::test {

struct ChildEnd {
  bool killed = false;  // by SIGKILL
  std::string text;     // what the work returned; "threw: " and what, if it threw
};

// Runs `work` in a child process and waits for it.
inline ChildEnd inChild(const std::function<std::string()>& work) {
  std::array<int, 2> pipe{};
  if (::pipe(pipe.data()) != 0) throw std::runtime_error("no pipe");
  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("no process");
  if (child == 0) {
    ::close(pipe[0]);
    std::string text;
    try {
      text = work();
    } catch (const std::exception& error) {
      text = std::string("threw: ") + error.what();
    }
    const bool told = ::write(pipe[1], text.data(), text.size()) == static_cast<ssize_t>(text.size());
    ::_exit(told ? 0 : 1);
  }
  ::close(pipe[1]);
  ChildEnd end;
  std::array<char, 4096> block{};
  for (ssize_t got = 0; (got = ::read(pipe[0], block.data(), block.size())) != 0;) {
    if (got > 0) end.text.append(block.data(), static_cast<std::size_t>(got));
    if (got < 0 && errno != EINTR) break;
  }
  ::close(pipe[0]);
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  end.killed = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
  if (!end.killed && !(WIFEXITED(status) && WEXITSTATUS(status) == 0)) {
    throw std::runtime_error("the child ended with status " + std::to_string(status));
  }
  return end;
}

}  // namespace cfgstore::test

#endif  // CFGMIG_TESTS_LIBCFGSTORE_CHILD_H
