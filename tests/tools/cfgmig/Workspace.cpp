#include "Workspace.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace fs = std::filesystem;

Workspace::Workspace() {
  std::string pattern = testing::TempDir() + "cfgmig-XXXXXX";
  if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no directory for the test");
  m_directory = pattern;
}

Workspace::~Workspace() {
  std::error_code ignored;
  fs::remove_all(m_directory, ignored);
}

std::string Workspace::write(const std::string& name, const std::string& content, mode_t mode) const {
  const std::string file = path(name);
  std::ofstream(file, std::ios::binary) << content;
  if (::chmod(file.c_str(), mode) != 0) throw std::runtime_error("the mode cannot be set");
  return file;
}

// In one piece: these files are large, and builds that do not optimize take their time over each byte.
std::string readFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  if (in.peek() != std::ifstream::traits_type::eof()) text << in.rdbuf();
  return std::move(text).str();
}

std::string Workspace::read(const std::string& name) const { return readFile(path(name)); }

mode_t Workspace::mode(const std::string& name) const {
  struct stat status {};
  if (::stat(path(name).c_str(), &status) != 0) return 0;
  return status.st_mode & 07777U;
}

std::vector<std::string> Workspace::names() const {
  std::vector<std::string> found;
  for (const auto& [name, state] : state()) found.push_back(name);
  return found;
}

std::vector<std::string> Workspace::namesAfter(const std::string& prefix) const {
  std::vector<std::string> found;
  for (const std::string& name : names()) {
    if (name != prefix && name.starts_with(prefix)) found.push_back(name);
  }
  return found;
}

Workspace::State Workspace::state() const {
  State found;
  for (const auto& entry : fs::directory_iterator(m_directory)) {
    struct stat status {};
    if (::lstat(entry.path().c_str(), &status) != 0) continue;
    std::ostringstream text;
    text << std::oct << status.st_mode << std::dec << ' ' << status.st_ino << ' ' << status.st_nlink << ' '
         << status.st_mtim.tv_sec << '.' << status.st_mtim.tv_nsec << '\n';
    if (S_ISREG(status.st_mode)) text << read(entry.path().filename());
    found[entry.path().filename()] = text.str();
  }
  return found;
}
