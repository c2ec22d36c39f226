// Faults.h -- which calls of the store and its free functions go wrong, and how.

#ifndef CFGMIG_TESTS_SUPPORT_FAULTS_H
#define CFGMIG_TESTS_SUPPORT_FAULTS_H

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace fake {

// What a failing call does to its out-parameters: null and 0, as the contract says, or nothing at all.
enum class OutParameters { cleared, untouched };

// What a faulty store throws.
struct Thrown : std::runtime_error {
  Thrown() : std::runtime_error("thrown by the fake store") {}
};

// Which calls a fault concerns: those that match every part that is not empty. `nth` counts the matching calls from
// 1; 0 stands for each of them.
struct Where {
  std::string store = {};      // "old"
  std::string operation = {};  // "getParamValueInfo", "formatDn"
  std::string dn = {};         // as the library writes it
  std::string attribute = {};  // as the library writes it
  int nth = 1;
};

// The call that is about to be made. Empty where a part does not apply.
struct CallSite {
  std::string_view store;
  std::string_view operation;
  std::string_view dn = {};
  std::string_view attribute = {};
};

// A failing free function answers in its own way: formatDn null, compareDns, doesFileExist and copyFile 0. Releases
// do not fail.
struct Failure {
  int rc;
  OutParameters outParameters;
};

class Faults {
 public:
  // The n-th call from now on, whatever it is.
  void failCall(int n, int rc, OutParameters outParameters = OutParameters::cleared);
  void throwAtCall(int n);

  // Particular calls, counted from now on.
  void fail(Where where, int rc, OutParameters outParameters = OutParameters::cleared);
  void throwAt(Where where);

  void clear();

  // True once a fault has struck.
  bool struck() const { return m_struck; }

  // Asked by the fake at every call that can fail: throws, or answers how to fail, or nothing.
  std::optional<Failure> strike(const CallSite& site);

 private:
  struct Rule {
    Where where;
    std::optional<Failure> failure;  // none: throws
    int seen = 0;
  };
  std::vector<Rule> m_rules;
  bool m_struck = false;
};

}  // namespace fake

#endif  // CFGMIG_TESTS_SUPPORT_FAULTS_H
