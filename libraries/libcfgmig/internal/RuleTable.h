// RuleTable.h -- what a version's rules are made of: an entry's DN and the steps that prepare the entry before its
// values are carried over. A rule file builds tables of these; everything that reads and writes is written here once.

#ifndef CFGMIG_LIBCFGMIG_INTERNAL_RULETABLE_H
#define CFGMIG_LIBCFGMIG_INTERNAL_RULETABLE_H

#include <cstring>
#include <span>

#include "ConfigFile.h"
#include "Message.h"
#include "StoreResults.h"
#include "TraceScope.h"

namespace cfgmig {

// What a step works on. Reads and drops act on the old store, sets on the new one.
struct RuleContext {
  ConfigFile& self;  // the new configuration
  ConfigFile& old;
  const TraceScope& trace;
  const char* dn = nullptr;  // of the entry, as its rule writes it

  OVOConfigUtils::CfgUtils& newStore() const { return *self.getCfgUtils(); }
  OVOConfigUtils::CfgUtils& oldStore() const { return *old.getCfgUtils(); }
};

enum class Next { step, giveUpTheEntry };

struct Step {
  Next (*run)(const RuleContext& context, const Step& step);  // a verb below, or a function of the rule file
  const char* attribute = nullptr;
  const char* reported = nullptr;  // the attribute that the failure message names
  const AttributeMessage* dropFailed = nullptr;
  const char* targetDn = nullptr;
  const AttributeMessage* setFailed = nullptr;

  // The failure message names another attribute than the one that is dropped.
  consteval Step reportedAs(const char* other) const {
    Step step = *this;
    step.reported = other;
    return step;
  }
};

struct EntryRule {
  const char* dn;
  std::span<const Step> steps;
};

// Runs steps in order on the entry `dn`, until one gives the entry up.
Next runSteps(std::span<const Step> steps, const char* dn, RuleContext context);

// Runs the steps of the first rule whose DN is `dn`, if there is one.
Next applyRules(std::span<const EntryRule> rules, const char* dn, RuleContext context);

// Removes one value of an attribute of the old entry, so that the transfer does not carry it; returns the store's
// code after reporting a failure.
int dropValue(const RuleContext& context, const char* attribute, char* value, AttributeMessage failed,
              const char* reported);

Next runDrop(const RuleContext& context, const Step& step);
Next runMove(const RuleContext& context, const Step& step);

enum class NullSlots { passedOver, cannotBe };

// Removes the first value of a multi-valued attribute of the old entry that contains one of `words`; a later one is
// carried over. `report` is called with the store's code and the index if the removal fails.
template <class Report>
void dropFirstNaming(const RuleContext& context, const char* attribute, std::span<const char* const> words,
                     NullSlots nullSlots, Report report) {
  ValueList values(context.self);
  if (context.oldStore().getParamArrayValueInfo(context.dn, attribute, values.out(), values.countOut()) != 0) return;
  for (int i = 0; i < values.count(); ++i) {
    if (nullSlots == NullSlots::passedOver && values[i] == nullptr) continue;
    for (const char* word : words) {
      if (std::strstr(values[i], word) == nullptr) continue;
      const int rc = context.oldStore().delValue(context.dn, attribute, DeleteList(values[i]));
      if (rc != 0) report(rc, i);
      return;
    }
  }
}

// drop("A"): the value of A does not reach the new configuration. A value that cannot be read is passed over.
class Drop {
 public:
  consteval explicit Drop(AttributeMessage failed) : m_failed(failed) {}
  consteval Step operator()(const char* attribute) const { return {runDrop, attribute, attribute, &m_failed}; }

 private:
  AttributeMessage m_failed;
};

// move("A", dn): the value of A is dropped and becomes the value of A in the entry `dn` of the new configuration.
class Move {
 public:
  consteval Move(AttributeMessage dropFailed, AttributeMessage setFailed)
      : m_dropFailed(dropFailed), m_setFailed(setFailed) {}
  consteval Step operator()(const char* attribute, const char* targetDn) const {
    return {runMove, attribute, attribute, &m_dropFailed, targetDn, &m_setFailed};
  }

 private:
  AttributeMessage m_dropFailed;
  AttributeMessage m_setFailed;
};

}  // namespace cfgmig

#endif  // CFGMIG_LIBCFGMIG_INTERNAL_RULETABLE_H
