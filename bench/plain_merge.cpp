// plain_merge.cpp -- the merge by itself, as a program that links the library would run it: what the tool's account of
// every value costs is measured against it.
//
//   plain_merge OLD NEW VERSION [OUT]      without OUT nothing is saved

#include <exception>
#include <iostream>

#include "ConfigFile.h"
#include "ConfigStore.h"

int main(int argc, char** argv) {
  if (argc != 4 && argc != 5) {
    std::cerr << "usage: plain_merge OLD NEW VERSION [OUT]\n";
    return 2;
  }
  try {
    ConfigFile oldConfig(argv[1], nullptr);
    ConfigFile newConfig(argv[2], nullptr);
    if (oldConfig.getDns() != 0 || newConfig.getDns() != 0) return 1;
    newConfig.mergeConfigFiles(&oldConfig, argv[3]);  // its result tells whether anything differed
    if (argc == 5) cfgstore::ConfigStore::of(*newConfig.getCfgUtils()).save(argv[4], cfgstore::Backup::none);
  } catch (const std::exception& error) {
    std::cerr << "plain_merge: " << error.what() << '\n';
    return 1;
  }
}
