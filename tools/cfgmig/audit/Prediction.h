// Prediction.h -- what a migration of these two configurations has to give, worked out from the rules alone.

#ifndef CFGMIG_TOOL_AUDIT_PREDICTION_H
#define CFGMIG_TOOL_AUDIT_PREDICTION_H

#include <cstdint>
#include <string_view>
#include <vector>

#include "Snapshot.h"
#include "audit/Content.h"
#include "audit/Names.h"
#include "audit/Rules.h"

namespace tool::auditing {

// What the rules do with a value of the old configuration.
enum class Fate : std::uint8_t {
  arrives,      // at `at`, which may be a value that was there already
  dropped,      // a row of the tables takes it out
  extracted,    // the same, and a part of it arrives at `at`
  left,         // its entry, or all of the entry that the tables do not name, is left behind
  stays,        // the new server's own stands: object classes, version, naming value
  second,       // of a setting that counts as having one value, it is not the first
  unread,       // the same, and its rule asks for the first alone
  behind,       // the transfer of its entry ends before it
  noTarget,     // the entry that it goes to is not there
  givenUp,      // its entry lacks what its rule needs
  notAdded,     // its entry lacks a naming value or object classes, so that it cannot be added
  notAskedFor,  // its rule ends before it
  outside,      // its entry is not below the configuration's root
};

struct Outcome {
  Fate fate = Fate::outside;
  bool isElsewhere = false;  // it goes to another entry, or under another name
  Id at = kNone;             // a value of the content
};

struct Prediction {
  explicit Prediction(const cfgstore::Snapshot& before) : content(before, names) {}

  Names names;
  Content content;
  std::vector<NameId> oldNames;   // of the attributes of the old configuration
  std::vector<Outcome> outcomes;  // one for each of its values; of no meaning for repeated ones
  std::vector<Id> targets;  // one for each of its entries: the entry of the content that it goes to, or kNone; one
                            // that was not there yet when it was to go there, too
};

// Time is linear in entries and values.
void predict(const cfgstore::Snapshot& old, const SourceRules& rules, Prediction& prediction);

// True for the attributes whose values are united.
bool isList(std::string_view name);

}  // namespace tool::auditing

#endif  // CFGMIG_TOOL_AUDIT_PREDICTION_H
