// The shared object as it lies on disk: what it exports, what it asks for, what it is called. CFGMIG_LIBRARY is its
// path, CFGMIG_IS_SANITIZED is set in builds with sanitizers.

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <regex>
#include <string>
#include <vector>

namespace {

std::vector<std::string> outputOf(const std::string& command) {
  std::vector<std::string> lines;
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) {
    return lines;
  }
  std::array<char, 4096> buffer;
  while (std::fgets(buffer.data(), static_cast<int>(buffer.size()), pipe) != nullptr) {
    std::string line = buffer.data();
    lines.push_back(line.substr(0, line.find('\n')));
  }
  EXPECT_EQ(pclose(pipe), 0) << command;
  return lines;
}

// The names in a listing of nm, which puts an address (or blanks) and a letter in front.
std::vector<std::string> symbols(const std::string& options) {
  std::vector<std::string> names;
  for (const std::string& line : outputOf("nm -DC " + options + " '" CFGMIG_LIBRARY "'")) {
    names.push_back(std::regex_replace(line, std::regex("^[0-9a-f ]* [A-Za-z] "), ""));
  }
  return names;
}

bool isOneOf(const std::string& name, const std::vector<std::string>& patterns) {
  for (const std::string& pattern : patterns) {
    if (std::regex_match(name, std::regex(pattern))) {
      return true;
    }
  }
  return false;
}

TEST(LibraryFile, ExportsTheClassAndThePluginDefinitionsAndNothingElse) {
  const std::vector<std::string> names = symbols("--defined-only");
  for (const std::string& name : names) {
    EXPECT_TRUE(isOneOf(
        name, {"ConfigFile::.*", "(typeinfo|typeinfo name|vtable) for ConfigFile", "clogPlugInPath", "rdbmPlugInPath"}))
        << name;
  }
  for (const char* wanted :
       {"ConfigFile::ConfigFile\\(std::.*string.*, aes_key_data\\*\\)", "ConfigFile::~ConfigFile\\(\\)",
        "ConfigFile::getFileName.*\\(\\) const", "ConfigFile::getDnNum\\(\\) const",
        "ConfigFile::getCfgDns\\(\\) const", "ConfigFile::getCfgUtils\\(\\)", "ConfigFile::getDns\\(\\)",
        "ConfigFile::dumpDns\\(\\) const", "ConfigFile::freeParamVals\\(char\\*\\*\\)",
        "ConfigFile::mergeConfigFiles\\(ConfigFile\\*, char const\\*\\)", "typeinfo for ConfigFile",
        "vtable for ConfigFile", "clogPlugInPath", "rdbmPlugInPath"}) {
    bool found = false;
    for (const std::string& name : names) {
      found = found || isOneOf(name, {wanted});
    }
    EXPECT_TRUE(found) << wanted;
  }
}

TEST(LibraryFile, AsksForTheTwoInterfacesAndTheRuntimeOnly) {
#ifdef CFGMIG_IS_SANITIZED
  GTEST_SKIP() << "sanitizers put parts of the runtime in their own place";
#endif
  const std::vector<std::string> allowed = {
      // The store.
      "OVOConfigUtils::CfgUtils::.*", "(formatDn|compareDns|doesFileExist|copyFile|cfg_msgfree|cfg_ber_free)\\(.*",
      // The trace facility.
      "trcEvents", "ldtr_(write|exit_errcode)\\(.*", "ldtr_formater_(local|global)::debug\\(.*",
      // The C and C++ runtime, which say so in the symbol's version; the last three are weak hooks of the toolchain.
      ".*@(GLIBC|GLIBCXX|CXXABI|GCC)_[0-9.]+", "_ITM_.*", "__gmon_start__", "__cxa_finalize"};
  const std::vector<std::string> names = symbols("--undefined-only");
  EXPECT_GT(names.size(), 20U);
  for (const std::string& name : names) {
    EXPECT_TRUE(isOneOf(name, allowed)) << name;
  }
}

TEST(LibraryFile, HasAVersionedName) {
  std::string name;
  for (const std::string& line : outputOf("readelf -dW '" CFGMIG_LIBRARY "'")) {
    std::smatch match;
    if (std::regex_search(line, match, std::regex("SONAME.*\\[(.*)\\]"))) {
      name = match[1];
    }
  }
  EXPECT_TRUE(std::regex_match(name, std::regex("libcfgmig\\.so\\.[0-9]+"))) << name;
}

TEST(LibraryFile, IsPositionIndependent) {
  for (const std::string& line : outputOf("readelf -dW '" CFGMIG_LIBRARY "'")) {
    EXPECT_EQ(line.find("TEXTREL"), std::string::npos) << line;
  }
}

}  // namespace
