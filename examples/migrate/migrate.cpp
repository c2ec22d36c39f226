// migrate -- carries the settings of an old server's configuration into a new server's. Both are LDIF files.
// Usage: migrate OLD NEW VERSION    VERSION of the old server: 4.1, 5.1, 5.2 or 6.0. NEW is replaced, a backup is kept.
// Exit status: 0 done; 1 failed, NEW is as it was; 2 usage; 5 done, but for settings that are listed.
// With LDTR_FILE=FILE in the environment the library's trace is written there.

#include <ConfigFile.h>
#include <ConfigStore.h>
#include <TraceControl.h>

#include <exception>
#include <iostream>
#include <set>
#include <stdexcept>
#include <string>

int main(int argc, char** argv) {
  const std::set<std::string> versions = {"4.1", "5.1", "5.2", "6.0"};
  if (argc != 4 || versions.count(argv[3]) == 0) {
    std::cerr << "usage: migrate OLD NEW 4.1|5.1|5.2|6.0\n";
    return 2;
  }
  try {
    if (const std::string problem = ldtr::setUpFromEnvironment(); !problem.empty()) std::cerr << problem << '\n';
    ConfigFile oldConfig(argv[1], nullptr);
    ConfigFile newConfig(argv[2], nullptr);

    cfgstore::ConfigStore& store = cfgstore::ConfigStore::of(*newConfig.getCfgUtils());
    bool complete = true;
    store.observe([&complete](const cfgstore::Write& write) {
      if (write.rc == 0) return;
      complete = false;
      std::cerr << "not carried: " << write.attribute << " of " << write.dn << ", code " << write.rc << '\n';
    });

    if (oldConfig.getDns() != 0 || newConfig.getDns() != 0) throw std::runtime_error("the entries cannot be listed");
    if (newConfig.mergeConfigFiles(&oldConfig, argv[3]) != 1) throw std::runtime_error("the merge cannot start");

    const cfgstore::SaveResult saved = store.save(argv[2], cfgstore::Backup::keep);
    if (!saved.written) std::cout << "nothing to do\n";
    if (!saved.backupPath.empty()) std::cout << "backup: " << saved.backupPath << '\n';
    return complete ? 0 : 5;
  } catch (const std::exception& error) {
    std::cerr << "migrate: " << error.what() << '\n';
    return 1;
  }
}
