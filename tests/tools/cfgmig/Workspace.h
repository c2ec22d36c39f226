// Workspace.h -- a directory of a test's own, and a way to see that nothing in it was touched.

#ifndef CFGMIG_TESTS_TOOL_WORKSPACE_H
#define CFGMIG_TESTS_TOOL_WORKSPACE_H

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

// What the file holds; empty when there is none.
std::string readFile(const std::filesystem::path& path);

class Workspace {
 public:
  Workspace();
  ~Workspace();
  Workspace(const Workspace&) = delete;
  Workspace& operator=(const Workspace&) = delete;

  std::string path(const std::string& name) const { return m_directory / name; }

  // Writes a file and returns its path.
  std::string write(const std::string& name, const std::string& content, mode_t mode = 0644) const;
  std::string read(const std::string& name) const;
  mode_t mode(const std::string& name) const;

  // The names in the directory, sorted, and of them those that begin with `prefix` without being it.
  std::vector<std::string> names() const;
  std::vector<std::string> namesAfter(const std::string& prefix) const;

  // Everything about every file that a program could have changed: type, content, mode, inode, time of change.
  using State = std::map<std::string, std::string>;
  State state() const;

 private:
  std::filesystem::path m_directory;
};

#endif  // CFGMIG_TESTS_TOOL_WORKSPACE_H
