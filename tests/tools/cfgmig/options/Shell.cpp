#include "Shell.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <sstream>

#include "../Workspace.h"

namespace {

std::string commandOf(const std::string& shell) {
  const std::string scripts = CFGMIG_SHELL_SCRIPTS "/";
  const std::string completions = CFGMIG_COMPLETIONS "/";
  if (shell == "bash") return "bash " + scripts + "bash.sh " + completions + "bash/cfgmig";
  if (shell == "zsh") return "zsh -f " + scripts + "zsh.zsh " + completions + "zsh";
  return "fish --no-config " + scripts + "fish.fish " + completions + "fish/cfgmig.fish";
}

// fish shows the value with the option in front of it, and a slash behind a directory.
std::string withoutDecoration(std::string candidate) {
  candidate.erase(0, candidate.starts_with("--") ? candidate.find('=') + 1 : 0);
  if (candidate.ends_with('/')) candidate.pop_back();
  return candidate;
}

std::set<std::string> summary(const std::set<std::string>& candidates) {
  if (candidates == std::set<std::string>{"dir", "one.ldif"}) return {"(files)"};
  if (candidates == std::set<std::string>{"dir"}) return {"(directories)"};
  return candidates;
}

}  // namespace

std::string inShellQuotes(const std::string& word) {
  std::string quoted = "'";
  for (const char c : word) quoted += c == '\'' ? std::string("'\\''") : std::string{c};
  return quoted + "'";
}

CommandResult runLine(const std::string& line, const std::string& directory) {
  const std::string all = "cd " + inShellQuotes(directory) + " && { " + line + "\n} 2>&1";
  std::FILE* const pipe = ::popen(all.c_str(), "r");
  if (pipe == nullptr) return {127, "no process for " + line};
  std::string output;
  std::array<char, 4096> buffer{};
  while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe))
    output.append(buffer.data(), count);
  const int status = ::pclose(pipe);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), output};
}

bool isInstalled(const std::string& program) {
  return runLine("command -v " + program + " >/dev/null", "/").status == 0;
}

Offers offersOf(const std::string& shell, const std::vector<std::string>& lines) {
  const Workspace workspace;
  workspace.write("one.ldif", "");
  std::filesystem::create_directory(workspace.path("dir"));
  // The history and settings of who runs the test are left alone.
  std::string command = "HOME=. XDG_DATA_HOME=" + inShellQuotes(workspace.path(".data")) +
                        " XDG_CONFIG_HOME=" + inShellQuotes(workspace.path(".config")) +
                        " LC_ALL=C.UTF-8 TERM=dumb timeout 60 " + commandOf(shell);
  for (const std::string& line : lines) command += " " + inShellQuotes(line);
  const CommandResult result = runLine(command, workspace.path(""));
  EXPECT_EQ(result.status, 0) << result.output;

  Offers offers;
  std::set<std::string>* current = nullptr;
  std::istringstream answers(result.output);
  for (std::string answer; std::getline(answers, answer);) {
    if (answer.starts_with("== ")) {
      current = &offers[answer.substr(3)];
    } else if (current == nullptr) {
      ADD_FAILURE() << shell << " says: " << answer;
    } else if (const bool isShort = answer.size() == 2 && answer[0] == '-'; !isShort && !answer.empty()) {
      current->insert(withoutDecoration(answer));
    }
  }
  for (auto& [line, candidates] : offers) candidates = summary(candidates);
  for (const std::string& line : lines) EXPECT_TRUE(offers.contains(line)) << shell << " has no answer for: " << line;
  return offers;
}
