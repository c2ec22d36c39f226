// StoreMaker.h -- opens a configuration store on given entries, whichever store the test program is linked with. The
// contract tests are built once with the fake store and once with the embedded one.

#ifndef CFGMIG_TESTS_SUPPORT_STOREMAKER_H
#define CFGMIG_TESTS_SUPPORT_STOREMAKER_H

#include <memory>
#include <vector>

#include "CfgUtils.h"
#include "Content.h"

// One open store. Values are plain texts: no control characters, no blank at either end, not beginning with a colon
// or "<"; each entry has at least one attribute, each attribute at least one value.
class MadeStore {
 public:
  virtual ~MadeStore() = default;
  virtual OVOConfigUtils::CfgUtils& utils() = 0;
};

std::unique_ptr<MadeStore> makeStore(const std::vector<fake::Entry>& entries);

#endif  // CFGMIG_TESTS_SUPPORT_STOREMAKER_H
