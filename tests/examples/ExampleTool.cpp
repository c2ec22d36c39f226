#include "ExampleTool.h"

#include <fcntl.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include "ExampleFiles.h"

namespace examples {

Outcome runTool(std::vector<std::string> arguments, const std::filesystem::path& log) {
  arguments.insert(arguments.begin(), CFGMIG_TOOL);
  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
  ::setenv("CFGMIG_STATE_DIRECTORY", "/tmp/cfgmig-test-state", 1);
  pid_t child = 0;
  const int failed = posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (failed != 0) return {-1, "the tool could not be started"};

  int status = 0;
  if (waitpid(child, &status, 0) != child) return {-1, "the tool was not waited for"};
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentOf(log)};
}

}  // namespace examples
