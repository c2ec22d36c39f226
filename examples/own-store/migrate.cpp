// migrate -- carries the settings of an old server's configuration into a new server's, both in a format of one's own.
// Usage: migrate OLD NEW VERSION RESULT    VERSION of the old server: 4.1, 5.1, 5.2 or 6.0
// Exit status: 0 done; 1 failed; 2 usage. What the library does is traced on standard error.

#include <ConfigFile.h>
#include <ldtr.h>

#include <exception>
#include <iostream>
#include <set>
#include <stdexcept>
#include <string>

#include "OwnStore.h"

int main(int argc, char** argv) {
  const std::set<std::string> versions = {"4.1", "5.1", "5.2", "6.0"};
  if (argc != 5 || versions.count(argv[3]) == 0) {
    std::cerr << "usage: migrate OLD NEW 4.1|5.1|5.2|6.0 RESULT\n";
    return 2;
  }
  try {
    ConfigFile oldConfig(argv[1], nullptr);
    ConfigFile newConfig(argv[2], nullptr);
    trcEvents = 0x4003000;  // public methods, and messages: settings that are not there are among these
    if (oldConfig.getDns() != 0 || newConfig.getDns() != 0) throw std::runtime_error("the entries cannot be listed");
    if (newConfig.mergeConfigFiles(&oldConfig, argv[3]) != 1) throw std::runtime_error("the merge cannot start");
    writeStore(*newConfig.getCfgUtils(), argv[4]);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "migrate: " << error.what() << '\n';
    return 1;
  }
}
