#include "audit/Prediction.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <utility>

#include "Line.h"
#include "NormalDn.h"

namespace tool::auditing {
namespace {

using cfgstore::Snapshot;
using cfgstore::SnapshotAttribute;
using cfgstore::SnapshotEntry;

bool isOneOf(std::string_view name, std::span<const std::string_view> names) {
  return std::any_of(names.begin(), names.end(),
                     [&](std::string_view other) { return cfgstore::sameName(name, other); });
}

bool isEqualButForCase(std::string_view left, std::string_view right) {
  return cfgstore::sameName(left, right);  // letters of ASCII, as in names
}

// Finds the row for a DN.
template <class Row>
class Rows {
 public:
  explicit Rows(std::span<const Row> rows) {
    for (const Row& row : rows) m_byDn.emplace(row.dn, &row);
  }
  const Row* find(std::string_view normal) const {
    const auto found = m_byDn.find(normal);
    return found == m_byDn.end() ? nullptr : found->second;
  }

 private:
  std::unordered_map<std::string_view, const Row*> m_byDn;
};

class Predictor {
 public:
  Predictor(const Snapshot& old, const SourceRules& rules, Prediction& to)
      : m_old(old), m_rules(rules), m_to(to), m_content(to.content) {
    to.oldNames = nameIds(old, to.names);
    for (const std::string_view name : kLists) m_lists.push_back(m_to.names.of(name));
    for (const std::string_view name : kNeverCarried) m_staying.push_back(m_to.names.of(name));
    m_to.outcomes.resize(old.values().size());
    m_to.targets.assign(old.entries().size(), kNone);
    m_isOut.assign(old.values().size(), false);
  }

  void run();

 private:
  struct Walked {
    Id attribute;
    Id first;  // of its values that are not out
  };

  // Reading the old configuration, without what the rules have taken out of it.
  bool isIn(Id value) const { return !m_isOut[value] && !m_old.values()[value].repeated; }
  Id nextValue(Id attribute, Id from) const;
  Id firstValue(Id attribute) const { return nextValue(attribute, m_old.attributes()[attribute].firstValue); }
  Id attributeOf(Id entry, std::string_view name) const { return m_old.findAttribute(entry, name); }
  Id firstValueOf(Id entry, std::string_view name) const;
  std::vector<Walked> walk(Id entry) const;
  std::string_view text(Id value) const { return m_old.values()[value].value; }

  // Telling what became of values.
  void is(Id value, Fate fate) { m_to.outcomes[value] = {fate}; }
  void arrives(Id value, Source source, Id at) { m_to.outcomes[value] = {Fate::arrives, source == Source::moved, at}; }
  void allAre(Id entry, Fate fate);
  void restIs(const Walked& walked, Id after, Fate fate);
  void haveStaying(Id entry, std::span<const std::string_view> names);

  // Steps.
  void takeOut(Id entry, const Setting& setting);
  void take(Id value, const Setting& setting);
  void addOld(Id entry, const OldEntry* rule);
  void add(Id entry, const OldEntry* rule);
  void rebuildMasterServer(Id entry);
  Id buildMasterServer();
  void mergeCommon(Id entry, const CommonEntry* rule);
  void merge(Id entry, Id target);
  void mergeElsewhere(Id entry, Id target);
  bool stays(NameId name) const { return std::find(m_staying.begin(), m_staying.end(), name) != m_staying.end(); }
  bool isListed(NameId name) const { return std::find(m_lists.begin(), m_lists.end(), name) != m_lists.end(); }
  void unite(const Walked& walked, Id target, Source source);
  void takeTheFirst(const Walked& walked, Id target, Id there, Source source);

  const Snapshot& m_old;
  const SourceRules& m_rules;
  Prediction& m_to;
  Content& m_content;
  std::vector<NameId> m_lists;
  std::vector<NameId> m_staying;
  std::vector<bool> m_isOut;
  std::vector<std::pair<Id, std::string_view>> m_lateTargets;  // of old entries, not there when they were asked for
};

Id Predictor::nextValue(Id attribute, Id from) const {
  const SnapshotAttribute& of = m_old.attributes()[attribute];
  for (Id value = from; value < of.firstValue + of.values; ++value) {
    if (isIn(value)) return value;
  }
  return kNone;
}

Id Predictor::firstValueOf(Id entry, std::string_view name) const {
  const Id attribute = attributeOf(entry, name);
  return attribute == kNone ? kNone : firstValue(attribute);
}

// The attributes that have values left, in the order of their first ones: an attribute whose first line goes stands
// where its second one is.
std::vector<Predictor::Walked> Predictor::walk(Id entry) const {
  const SnapshotEntry& of = m_old.entries()[entry];
  std::vector<Walked> walked;
  walked.reserve(of.attributes);
  for (Id attribute = of.firstAttribute; attribute < of.firstAttribute + of.attributes; ++attribute) {
    if (const Id first = firstValue(attribute); first != kNone) walked.push_back({attribute, first});
  }
  std::sort(walked.begin(), walked.end(), [&](const Walked& left, const Walked& right) {
    return m_old.values()[left.first].line < m_old.values()[right.first].line;
  });
  return walked;
}

void Predictor::allAre(Id entry, Fate fate) {
  const SnapshotEntry& of = m_old.entries()[entry];
  for (const SnapshotAttribute& attribute : m_old.attributesOf(of)) {
    for (Id value = attribute.firstValue; value < attribute.firstValue + attribute.values; ++value) {
      if (isIn(value)) is(value, fate);
    }
  }
}

void Predictor::restIs(const Walked& walked, Id after, Fate fate) {
  for (Id value = nextValue(walked.attribute, after + 1); value != kNone;
       value = nextValue(walked.attribute, value + 1)) {
    is(value, fate);
  }
}

void Predictor::haveStaying(Id entry, std::span<const std::string_view> names) {
  for (const std::string_view name : names) {
    const Id attribute = attributeOf(entry, name);
    if (attribute == kNone) continue;
    const Id first = firstValue(attribute);
    is(first, Fate::stays);
    restIs({attribute, first}, first, Fate::stays);
  }
}

void Predictor::take(Id value, const Setting& setting) {
  m_isOut[value] = true;
  is(value, Fate::dropped);
  if (setting.toDn.empty() || (!setting.butDropped.empty() && text(value) == setting.butDropped)) return;
  std::string_view moved = text(value);
  if (!setting.onlyBehind.empty()) {
    const std::size_t at = moved.find(setting.onlyBehind);
    if (at == std::string_view::npos) return;
    moved.remove_prefix(at + setting.onlyBehind.size());
  }
  const Id target = m_content.findEntry(setting.toDn);
  if (target == kNone) {
    m_to.outcomes[value] = {Fate::noTarget, true};
    return;
  }
  const bool isWhole = setting.onlyBehind.empty();
  const Provenance from = isWhole ? Provenance{Source::moved, value} : Provenance{Source::rule, value};
  const Id at = m_content.setValue(target, m_to.names.of(setting.toName), moved, from);
  m_to.outcomes[value] = {isWhole ? Fate::arrives : Fate::extracted, true, at};
}

void Predictor::takeOut(Id entry, const Setting& setting) {
  const Id attribute = attributeOf(entry, setting.name);
  if (attribute == kNone) return;
  for (Id value = firstValue(attribute); value != kNone; value = nextValue(attribute, value + 1)) {
    switch (setting.which) {
      case Which::first:
        return take(value, setting);
      case Which::firstEqual:
        if (isEqualButForCase(text(value), setting.words[0])) take(value, setting);
        return;
      case Which::firstWith:
        if (containsOneOf(text(value), setting.words)) return take(value, setting);
        break;
      case Which::eachWith:
        if (containsOneOf(text(value), setting.words)) take(value, setting);
        break;
    }
  }
}

// ---- Entries that only the old configuration has -------------------------------------------------------------------

void Predictor::add(Id entry, const OldEntry* rule) {
  const Id naming = firstValueOf(entry, kNamingName);
  const Id classes = attributeOf(entry, kClassName);
  const std::string_view normal = m_old.entries()[entry].normal;
  if (naming == kNone || classes == kNone || firstValue(classes) == kNone) return allAre(entry, Fate::notAdded);
  const Id added = m_content.addEntry(normal);
  m_to.targets[entry] = added;
  for (const Walked& walked : walk(entry)) unite(walked, added, Source::carried);
  const Id onlyClass = firstValue(classes);
  if (nextValue(classes, onlyClass + 1) == kNone) {
    m_content.addValue(added, m_to.names.of(kClassName), kOnlyClassJoinedBy, {});
  }
  if (rule != nullptr) m_content.addValue(added, m_to.names.of(rule->setting), rule->value, {});
}

Id Predictor::buildMasterServer() {
  const Id built = m_content.addEntry(kMasterServer);
  for (const std::string_view name : kMasterServerClasses) {
    m_content.addValue(built, m_to.names.of(kClassName), name, {});
  }
  m_content.addValue(built, m_to.names.of(kNamingName), kMasterServerName, {});
  return built;
}

// The master, or else the peer that counts as one from now on, then its password, then the referral; what is missing
// ends it.
void Predictor::rebuildMasterServer(Id entry) {
  allAre(entry, Fate::left);
  const Id built = buildMasterServer();
  m_to.targets[entry] = built;
  const bool isReplica = firstValueOf(entry, kMasterDn) != kNone;
  const bool isPeer = !isReplica && firstValueOf(entry, kPeerDn) != kNone;
  if (isReplica || isPeer) {
    m_content.addValue(built, m_to.names.of(kMarker), isReplica ? kFormerReplica : kFormerPeer, {});
  }
  struct Copy {
    std::string_view from;
    std::string_view to;
  };
  const Copy copies[] = {{isPeer ? kPeerDn : kMasterDn, kMasterDn},
                         {isPeer ? kPeerPassword : kMasterPassword, kMasterPassword},
                         {kMasterReferral, kMasterReferral}};
  bool goesOn = isReplica || isPeer;
  for (const Copy& copy : copies) {
    const bool isCarried = isReplica || isPeer || copy.to == kMasterReferral;
    const Id attribute = attributeOf(entry, copy.from);
    const Id value = attribute == kNone ? kNone : firstValue(attribute);
    if (value == kNone) {
      goesOn = false;
    } else if (isCarried) {
      restIs({attribute, value}, value, Fate::second);
      if (!goesOn) {
        is(value, Fate::notAskedFor);
      } else {
        const Source source = copy.from == copy.to ? Source::carried : Source::moved;
        arrives(value, source, m_content.addValue(built, m_to.names.of(copy.to), text(value), {source, value}));
      }
    }
  }
}

void Predictor::addOld(Id entry, const OldEntry* rule) {
  if (rule == nullptr || rule->goes == OldEntry::Goes::withSetting) return add(entry, rule);
  if (rule->goes == OldEntry::Goes::nowhere) return allAre(entry, Fate::left);
  if (rule->goes == OldEntry::Goes::rebuilt) return rebuildMasterServer(entry);
  const Id target = m_content.findEntry(rule->toDn);
  if (target == kNone) m_lateTargets.emplace_back(entry, rule->toDn);
  m_to.targets[entry] = target;
  for (const Setting& setting : rule->settings) takeOut(entry, setting);
  if (rule->goes == OldEntry::Goes::elsewhere) return mergeElsewhere(entry, target);

  allAre(entry, Fate::left);
  const Id attribute = attributeOf(entry, rule->setting);
  const Id value = attribute == kNone ? kNone : firstValue(attribute);
  if (value == kNone) return;
  restIs({attribute, value}, value, Fate::unread);
  if (target == kNone) return is(value, Fate::noTarget);
  arrives(value, Source::moved,
          m_content.setValue(target, m_to.oldNames[attribute], text(value), {Source::moved, value}));
}

// An entry of another DN has to have every setting already: the first that it lacks ends the transfer.
void Predictor::mergeElsewhere(Id entry, Id target) {
  if (target == kNone) return allAre(entry, Fate::noTarget);
  const NameId naming = m_to.names.of(kNamingName);
  bool hasEnded = false;
  for (const Walked& walked : walk(entry)) {
    const NameId name = m_to.oldNames[walked.attribute];
    if (stays(name) || name == naming) {
      is(walked.first, Fate::stays);
      restIs(walked, walked.first, Fate::stays);
      continue;
    }
    const Id there = m_content.findAttribute(target, name);
    hasEnded = hasEnded || there == kNone;
    if (hasEnded) {
      is(walked.first, Fate::behind);
      restIs(walked, walked.first, Fate::behind);
    } else if (isListed(name)) {
      unite(walked, target, Source::moved);
    } else {
      takeTheFirst(walked, target, there, Source::moved);
    }
  }
}

// ---- Entries that both have ----------------------------------------------------------------------------------------

void Predictor::unite(const Walked& walked, Id target, Source source) {
  for (Id value = walked.first; value != kNone; value = nextValue(walked.attribute, value + 1)) {
    arrives(value, source, m_content.addValue(target, m_to.oldNames[walked.attribute], text(value), {source, value}));
  }
}

// A first value that is equal already is left alone, with all that stands beside it.
void Predictor::takeTheFirst(const Walked& walked, Id target, Id there, Source source) {
  const Id first = m_content.attribute(there).first;
  const bool isEqual = m_content.value(first).text == text(walked.first);
  arrives(walked.first, source,
          isEqual ? first
                  : m_content.setValue(target, m_to.oldNames[walked.attribute], text(walked.first),
                                       {source, walked.first}));
  restIs(walked, walked.first, Fate::second);
}

void Predictor::merge(Id entry, Id target) {
  for (const Walked& walked : walk(entry)) {
    const NameId name = m_to.oldNames[walked.attribute];
    if (stays(name)) {
      is(walked.first, Fate::stays);
      restIs(walked, walked.first, Fate::stays);
      continue;
    }
    const Id there = m_content.findAttribute(target, name);
    if (there == kNone || isListed(name)) {
      unite(walked, target, Source::carried);
    } else {
      takeTheFirst(walked, target, there, Source::carried);
    }
  }
}

void Predictor::mergeCommon(Id entry, const CommonEntry* rule) {
  const Id target = m_content.findEntry(m_old.entries()[entry].normal);
  m_to.targets[entry] = target;
  if (rule == nullptr) return merge(entry, target);
  const bool isGivenUp = !rule->needs.empty() && attributeOf(entry, rule->needs) == kNone;
  for (const Setting& setting : rule->settings) takeOut(entry, setting);
  if (!isGivenUp) return merge(entry, target);
  allAre(entry, Fate::givenUp);
  haveStaying(entry, kNeverCarried);
}

// All additions, then all merges, each in the order of the old configuration, then the check.
void Predictor::run() {
  const Rows<OldEntry> oldEntries(m_rules.oldEntries);
  const Rows<CommonEntry> commonEntries(m_rules.commonEntries);
  const auto entries = m_old.entries();
  std::vector<Id> common;
  for (Id entry = 0; entry < entries.size(); ++entry) {
    if (entries[entry].setAside) continue;  // it is the same in all three
    const std::string_view normal = entries[entry].normal;
    const Id there = m_content.findEntry(normal);
    if (!cfgstore::isWithinNormalDn(normal, kRoot)) {
      m_to.targets[entry] = there;  // where its values would have been looked for
    } else if (there != kNone && m_content.entries()[there].before != kNone) {
      common.push_back(entry);
    } else {
      addOld(entry, oldEntries.find(normal));
    }
  }
  for (const Id entry : common) mergeCommon(entry, commonEntries.find(entries[entry].normal));
  if (m_rules.marksFormerMaster && m_content.findEntry(kMasterServer) == kNone) {
    m_content.addValue(buildMasterServer(), m_to.names.of(kMarker), kFormerMaster, {});
  }
  for (const auto& [entry, dn] : m_lateTargets) m_to.targets[entry] = m_content.findEntry(dn);
}

}  // namespace

bool isList(std::string_view name) { return isOneOf(name, kLists); }

void predict(const Snapshot& old, const SourceRules& rules, Prediction& prediction) {
  Predictor(old, rules, prediction).run();
}

}  // namespace tool::auditing
