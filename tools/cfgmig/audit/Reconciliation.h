// Reconciliation.h -- what the result should be against what it is.

#ifndef CFGMIG_TOOL_AUDIT_RECONCILIATION_H
#define CFGMIG_TOOL_AUDIT_RECONCILIATION_H

#include <string_view>
#include <unordered_map>
#include <vector>

#include "Snapshot.h"
#include "audit/Audit.h"
#include "audit/Prediction.h"

namespace tool::auditing {

struct Contents {
  const cfgstore::Snapshot& old;
  const cfgstore::Snapshot& before;
  const cfgstore::Snapshot& result;
};

// Which value of the result is which of the content, and what is over on either side, which goes to `discrepancies`
// and `unexplained` of the audit. The order of the values of the include list is not looked at if `copiesSchemaFiles`:
// it depends on which of the files were found.
class Reconciliation {
 public:
  Reconciliation(const Contents& contents, Prediction& prediction, bool copiesSchemaFiles, Audit& audit);

  // The value of the result that a value of the content is, also if it should have been replaced; kNoValue when it is
  // not there.
  ValueId placeOf(Id value) const { return m_resultOf[value]; }

  // The same of the value that took the place of one that is gone.
  ValueId successorOf(Id value) const;

  // The value of the content that a value of the result is, or kNone.
  Id contentOf(ValueId result) const { return m_contentOf[result]; }

  // The value of the old configuration that a value of the result is although no rule brings it there, or kNoValue.
  ValueId uncalledFor(ValueId result) const { return m_uncalledFor[result]; }

 private:
  struct Attribute {
    Id entry;
    Id there;   // the attribute of the result, or kNone
    Id should;  // the attribute of the content, or kNone
    NameId name;
  };

  // Values that are not to be where an attribute of the result is, and might be there all the same.
  struct Known {
    std::unordered_map<std::string_view, std::vector<Id>> gone;  // of the content, the first behind the others
    std::unordered_map<std::string_view, ValueId> notBrought;    // of the old configuration
  };

  void compareEntries();
  void compareEntry(Id entry, Id there);
  void compare(const Attribute& attribute);
  void match(const Attribute& attribute, std::vector<Id>& missing, std::vector<ValueId>& over);
  void tell(const Attribute& attribute, const std::vector<Id>& missing, const std::vector<ValueId>& over);
  Discrepancy::Kind explain(const Attribute& attribute, Known& known, ValueId over, Discrepancy& discrepancy);
  void expect(Id value, Discrepancy& discrepancy) const;
  Known whatIsKnownOf(const Attribute& attribute);

  const Contents& m_contents;
  Prediction& m_prediction;
  const Content& m_content;
  Audit& m_audit;
  std::vector<NameId> m_names;      // of the attributes of the result
  std::vector<ValueId> m_resultOf;  // by value of the content
  std::vector<Id> m_contentOf;      // by value of the result
  std::vector<ValueId> m_uncalledFor;
  std::vector<std::vector<Id>> m_oldEntriesFor;  // by entry of the content; made when first needed
  NameId m_includeList;
  bool m_copiesSchemaFiles;
};

}  // namespace tool::auditing

#endif  // CFGMIG_TOOL_AUDIT_RECONCILIATION_H
