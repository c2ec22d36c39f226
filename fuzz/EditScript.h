// EditScript.h -- bytes as a sequence of store operations.

#ifndef CFGMIG_FUZZ_EDITSCRIPT_H
#define CFGMIG_FUZZ_EDITSCRIPT_H

#include <string>
#include <vector>

#include "Choices.h"
#include "StoreModel.h"

namespace fuzz {

enum class Edit { addValue, delValue, setValue, addEntry, removeEntry, list };

// One operation. Most of them concern what the configuration holds, since anything else is only refused.
struct EditStep {
  Edit edit;
  std::string dn;                   // spelled in some way; may be no DN
  std::string attribute;            // may be no attribute name
  std::vector<std::string> values;  // addValue, setValue: one; delValue: any number; addEntry: cn, two object classes
  int scope = 0;                    // of the list
};

EditStep nextStep(Choices& choices, const cfgstore::test::Content& content);

}  // namespace fuzz

#endif  // CFGMIG_FUZZ_EDITSCRIPT_H
