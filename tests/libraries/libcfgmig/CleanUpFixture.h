// CleanUpFixture.h -- the entries that the clean-up methods know, on the configuration that they are called on (the old
// one; the new one only stands by).

#ifndef CFGMIG_TESTS_LIBCFGMIG_CLEANUPFIXTURE_H
#define CFGMIG_TESTS_LIBCFGMIG_CLEANUPFIXTURE_H

#include <string>
#include <vector>

#include "ConfigFileFixture.h"
#include "StandaloneMethods.h"

namespace cleanup {

inline const std::string kDirectory = "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
inline const std::string kSchemaDb = "CN=SCHEMADB,CN=LDCF BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
inline const std::string kChangeLog = "CN=CHANGE LOG,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
inline const std::string kFrontEnd = "CN=FRONT END,CN=CONFIGURATION";

inline const std::string kPlugin = "zor-slapdPlugin";

// The canonical definitions, as products know them; the first has two blanks after its kind.
inline const std::string kCanonicalChangeLog = "preoperation  libzorldapcl.so CLInit cn=changelog";
inline const std::string kCanonicalBackend = "database libback-rdbm.so rdbm_backend_init";

class CleanUpFixture : public ConfigFileFixture {
 protected:
  // The calls of a method, with "DIR", "SCHEMADB", "LOG" and "FRONT" standing for the four DNs.
  static Lines expanded(Lines lines) {
    for (std::string& line : lines) {
      for (const auto& [shortName, dn] : {std::pair<std::string, std::string>{"(DIR", kDirectory},
                                          {"(SCHEMADB", kSchemaDb},
                                          {"(LOG", kChangeLog},
                                          {"(FRONT", kFrontEnd}}) {
        if (const auto at = line.find(shortName); at != std::string::npos) {
          line.replace(at + 1, shortName.size() - 1, dn);
          break;
        }
      }
    }
    return lines;
  }

  Lines plugins(const std::string& dn) { return oldStore().values(dn, kPlugin); }

  void putPlugins(const std::string& dn, const Lines& values) { oldStore().put(dn, {{kPlugin, values}}); }

  // A method's own records around its messages.
  static Lines traceOf(const fake::Traced& method, const Lines& messages, long result) {
    Lines lines = {entryOf(method)};
    lines.insert(lines.end(), messages.begin(), messages.end());
    lines.push_back(exitOf(method, result));
    return lines;
  }
};

}  // namespace cleanup

#endif  // CFGMIG_TESTS_LIBCFGMIG_CLEANUPFIXTURE_H
