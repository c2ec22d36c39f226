#include "TableLine.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <ostream>

#include "TableLineExpectations.h"

namespace pages {

using testing::Contains;

void PrintTo(const Line& line, std::ostream* out) { *out << line.row->place << " from " << line.version; }

std::vector<Line> lines() {
  std::vector<Line> lines;
  for (const char* version : kVersions) {
    for (const char* name : {version, kEveryVersion}) {
      const Page& page = pages::page(name);
      for (const Row& row : page.rows) lines.push_back({version, &page, &row});
    }
  }
  return lines;
}

std::string nameOf(const Line& line) {
  std::string name = "From" + line.version + "At" + line.row->place;
  const auto isMark = [](char c) { return c == '.' || c == ':'; };
  std::replace_if(name.begin(), name.end(), isMark, '_');
  return name;
}

std::vector<Site> TableLine::sites() const {
  std::vector<Site> sites;
  if (row.entry == kAnyEntry || row.entry == kAnyOtherEntry) {
    for (const char* dn : scenario::kUnnamedEntries) sites.push_back({dn, dn});
    return sites;
  }
  for (const Row& other : page.rows) {
    if (other.subject != Subject::entry || other.fate != Fate::moved) continue;
    const bool isThis = row.entry == kMovedEntry || row.entry == other.entry;
    if (isThis) sites.push_back({page.dn(other.entry), page.dn(other.goesTo.entry)});
  }
  if (sites.empty()) sites.push_back({page.dn(row.entry), page.dn(row.entry)});
  if (row.presence == Presence::both) {
    for (Site& site : sites) site.newDn = site.oldDn;
  }
  return sites;
}

fake::Entry TableLine::oldEntry(const Site& site) const {
  fake::Entry entry = scenario::entry(site.oldDn, scenario::identity(row.circumstance));
  for (const Row& other : page.rows) {
    if (other.subject != Subject::entryWithout || other.entry == kAnyEntry) continue;
    if (samePlace(page.dn(other.entry), site.oldDn)) set(entry, other.attribute, {"not to be missed"});
  }
  return entry;
}

std::vector<std::string> TableLine::attributes() const {
  switch (row.subject) {
    case Subject::attribute:
    case Subject::onlyValue:
      return {row.attribute};
    case Subject::list:
    case Subject::listInBoth: {
      std::vector<std::string> lists = pages::page(kEveryVersion).lists;
      std::erase(lists, kClass);
      return lists;
    }
    case Subject::other:
      return unnamedSettings();
    default:
      return {scenario::kUnnamedSetting};
  }
}

std::vector<std::string> TableLine::unnamedSettings() const {
  std::vector<std::string> named;
  std::vector<std::string> settings = {scenario::kUnnamedSetting};
  for (const Row& other : page.rows) {
    if (other.entry == row.entry && other.circumstance == row.circumstance) named.push_back(other.attribute);
  }
  for (const Row& other : page.rows) {
    // With one of these two the entry would be another kind of entry.
    for (const std::string& name : {other.attribute, other.goesTo.entry == row.entry ? other.goesTo.attribute : ""}) {
      const bool decides = name == "zor-slapdMasterDN" || name == "zor-slapdPeerDN";
      if (other.entry != row.entry || name.empty() || decides) continue;
      if (!has(named, name) && !has(settings, name)) settings.push_back(name);
    }
  }
  return settings;
}

void TableLine::expectEntered(const Site& site, const Outcome& outcome) const {
  EXPECT_THAT(outcome.entered, Contains(row.by));
  const bool isUntouched = row.entry == kAnyEntry && row.presence == Presence::newOnly;
  if (!outcome.showsReads || isUntouched) return;
  const auto isInItsHands = [&](const migration::Call& call) {
    return call.method() == row.by && (samePlace(call.dn, site.oldDn) || samePlace(call.dn, site.newDn));
  };
  // One look at its DN is enough where nothing more is done with it.
  const auto& calls =
      row.fate == Fate::leftBehind && row.subject == Subject::entry ? outcome.comparisons : outcome.calls;
  EXPECT_TRUE(std::any_of(calls.begin(), calls.end(), isInItsHands)) << row.by << " had not to do with it";
}

void TableLine::expectMessage(const Outcome& outcome) const { EXPECT_THAT(outcome.failed, Contains(row.by)); }

void TableLine::expectNoMessage(const Outcome& outcome) const {
  // An entry that names neither a master nor a peer brings about the one message that these are missing.
  EXPECT_EQ(has(outcome.failed, row.by), row.circumstance == Circumstance::unrelated);
}

void TableLine::expectNothingWritten(const Outcome& outcome, const Values& values) const {
  for (const std::string& value : values) EXPECT_FALSE(outcome.merged.holdsAnywhere(value)) << value;
}

}  // namespace pages
