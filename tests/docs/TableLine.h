// TableLine.h -- one line of a table of docs/migration under test: where it applies, the configurations in which it is
// tried, and what is expected of a merge of them.

#ifndef CFGMIG_TESTS_DOCS_TABLELINE_H
#define CFGMIG_TESTS_DOCS_TABLELINE_H

#include <gtest/gtest.h>

#include <iosfwd>
#include <string>
#include <vector>

#include "Migration.h"
#include "MigrationPages.h"
#include "Scenario.h"

namespace pages {

struct Line {
  std::string version;
  const Page* page;
  const Row* row;
};

// Every line of the pages, those for every version once for each.
std::vector<Line> lines();

void PrintTo(const Line& line, std::ostream* out);
std::string nameOf(const Line& line);

// Where the entry of a line is in the old configuration, and where what it holds goes.
struct Site {
  std::string oldDn;
  std::string newDn;
  bool isMoved() const { return oldDn != newDn; }
};

class TableLine : public testing::TestWithParam<Line> {
 protected:
  const std::string version = GetParam().version;
  const Page& page = *GetParam().page;
  const Row& row = *GetParam().row;

  // The entries that the line is about: one, or some that stand for all.
  std::vector<Site> sites() const;

  // What the line says, in each configuration in which it applies.
  void tryEntry(const Site& site) const;
  void tryWrittenValue(const Site& site) const;  // one that a rule writes, whatever the old configuration holds
  void tryValues(const Site& site) const;        // those of the old configuration

 private:
  using Outcome = migration::Outcome;
  using Values = migration::Values;
  struct ValueCase;

  // The old entry: what makes it what the line takes it for, and what no entry may miss.
  fake::Entry oldEntry(const Site& site) const;

  // The settings with which a line is tried: the one that it names, or some that stand for all.
  std::vector<std::string> attributes() const;
  // Settings that the lines about this entry under other circumstances name, and one that none names.
  std::vector<std::string> unnamedSettings() const;

  ValueCase valueCase(const Site& site, const std::string& attribute, const scenario::Trial& trial,
                      bool newHasIt) const;
  void addTarget(ValueCase& one) const;
  void tryValue(const ValueCase& one) const;
  Values expectedValues(const ValueCase& one) const;
  void expectFate(const ValueCase& one, const Outcome& outcome) const;
  void expectDropped(const ValueCase& one, const Outcome& outcome) const;
  void expectMoved(const ValueCase& one, const Outcome& outcome) const;
  void expectLost(const ValueCase& one, const Outcome& outcome) const;
  void expectNotAskedFor(const ValueCase& one, const Outcome& outcome) const;

  // That the method of the line had the entry in its hands; that it made a call like this by itself; that the call was
  // made under it.
  template <class IsIt>
  void expectCall(const Outcome& outcome, const char* what, IsIt isIt) const;
  template <class IsIt>
  void expectCallUnder(const Outcome& outcome, const char* what, IsIt isIt) const;
  void expectEntered(const Site& site, const Outcome& outcome) const;

  // What is lost is reported, what is left behind is not.
  void expectMessage(const Outcome& outcome) const;
  void expectNoMessage(const Outcome& outcome) const;

  void expectNothingWritten(const Outcome& outcome, const Values& values) const;
};

}  // namespace pages

#endif  // CFGMIG_TESTS_DOCS_TABLELINE_H
