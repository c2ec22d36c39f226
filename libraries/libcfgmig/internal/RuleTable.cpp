#include "RuleTable.h"

#include "StoreResults.h"

namespace cfgmig {

Next runSteps(std::span<const Step> steps, const char* dn, RuleContext context) {
  context.dn = dn;
  for (const Step& step : steps) {
    if (step.run(context, step) == Next::giveUpTheEntry) return Next::giveUpTheEntry;
  }
  return Next::step;
}

Next applyRules(std::span<const EntryRule> rules, const char* dn, RuleContext context) {
  for (const EntryRule& rule : rules) {
    if (compareDns(dn, rule.dn) != 0) return runSteps(rule.steps, rule.dn, context);
  }
  return Next::step;
}

int dropValue(const RuleContext& context, const char* attribute, char* value, AttributeMessage failed,
              const char* reported) {
  const int rc = context.oldStore().delValue(context.dn, attribute, DeleteList(value));
  if (rc != 0) context.trace.debug(failed, reported, rc);
  return rc;
}

Next runDrop(const RuleContext& context, const Step& step) {
  Text value;
  if (context.oldStore().getParamValueInfo(context.dn, step.attribute, value.out()) == 0) {
    dropValue(context, step.attribute, value.get(), *step.dropFailed, step.reported);
  }
  return Next::step;
}

Next runMove(const RuleContext& context, const Step& step) {
  Text value;
  if (context.oldStore().getParamValueInfo(context.dn, step.attribute, value.out()) == 0) {
    dropValue(context, step.attribute, value.get(), *step.dropFailed, step.reported);
    const int rc = context.newStore().setValue(step.targetDn, step.attribute, value.get());
    if (rc != 0) context.trace.debug(*step.setFailed, step.attribute, rc);
  }
  return Next::step;
}

}  // namespace cfgmig
