#include "Faults.h"

#include <utility>

namespace fake {

namespace {

bool concerns(const Where& where, const CallSite& site) {
  return (where.store.empty() || where.store == site.store) &&
         (where.operation.empty() || where.operation == site.operation) && (where.dn.empty() || where.dn == site.dn) &&
         (where.attribute.empty() || where.attribute == site.attribute);
}

}  // namespace

void Faults::failCall(int n, int rc, OutParameters outParameters) { fail({.nth = n}, rc, outParameters); }

void Faults::throwAtCall(int n) { throwAt({.nth = n}); }

void Faults::fail(Where where, int rc, OutParameters outParameters) {
  m_rules.push_back({std::move(where), Failure{rc, outParameters}});
}

void Faults::throwAt(Where where) { m_rules.push_back({std::move(where), std::nullopt}); }

void Faults::clear() {
  m_rules.clear();
  m_struck = false;
}

std::optional<Failure> Faults::strike(const CallSite& site) {
  for (Rule& rule : m_rules) {
    if (!concerns(rule.where, site)) {
      continue;
    }
    ++rule.seen;
    if (rule.where.nth != 0 && rule.seen != rule.where.nth) {
      continue;
    }
    m_struck = true;
    if (!rule.failure) {
      throw Thrown();
    }
    return rule.failure;
  }
  return std::nullopt;
}

}  // namespace fake
