// DirectoryServer.h -- a real LDAP server for one test, with a directory, a port and a schema of its own.

#ifndef CFGMIG_TESTS_TOOL_REPORT_DIRECTORYSERVER_H
#define CFGMIG_TESTS_TOOL_REPORT_DIRECTORYSERVER_H

#include <sys/types.h>

#include <string>
#include <vector>

#include "../Workspace.h"
#include "DirectoryContent.h"

struct ProgramRun {
  int status = -1;  // the exit status
  std::string output;
};

// Listens on loopback only, touches nothing outside of a temporary directory, runs as whoever runs the test, and is
// gone when the object is, or when the test is killed.
class DirectoryServer {
 public:
  // The server holds `content`, and its schema admits every entry of the contents in `admitted`: each attribute takes
  // any bytes and compares them one by one, those that never have two values take only one; each object class allows
  // every attribute. Throws std::runtime_error when the server is not installed or does not start within a time.
  DirectoryServer(const DirectoryContent& content, const std::vector<const DirectoryContent*>& admitted);
  ~DirectoryServer();
  DirectoryServer(const DirectoryServer&) = delete;
  DirectoryServer& operator=(const DirectoryServer&) = delete;

  // The stock command-line client with a file of change records.
  ProgramRun modify(const std::string& changeRecords);

  // What the server answers to a search for everything.
  DirectoryContent content();

 private:
  ProgramRun run(const std::vector<std::string>& arguments) const;
  void load(const DirectoryContent& content);
  void start();
  bool answers() const;
  void stop();

  Workspace m_workspace;
  std::string m_config;
  std::string m_url;
  pid_t m_process = -1;
};

#endif  // CFGMIG_TESTS_TOOL_REPORT_DIRECTORYSERVER_H
