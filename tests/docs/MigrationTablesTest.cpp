// Every line of the tables in docs/migration, tried out: a small old and new configuration in which the line applies is
// merged, and what the line says is what is left, done by the method that the line names.

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "TableLine.h"

namespace pages {
namespace {

TEST_P(TableLine, SaysWhatHappens) {
  for (const Site& site : sites()) {
    SCOPED_TRACE(row.place + " " + site.oldDn);
    if (row.subject == Subject::entry || row.subject == Subject::entryWithout) {
      tryEntry(site);
    } else if (row.fate == Fate::addedByRule) {
      tryWrittenValue(site);
    } else {
      tryValues(site);
    }
  }
}

// Whatever does not simply arrive is something for a person to look at.
TEST_P(TableLine, SaysWhatToCheck) {
  const Fate quiet[] = {Fate::carried, Fate::merged, Fate::added, Fate::keptNew};
  const bool isQuiet = std::find(std::begin(quiet), std::end(quiet), row.fate) != std::end(quiet);
  const bool isOrdinary = row.entry == kAnyEntry && row.fate == Fate::addedByRule;
  EXPECT_TRUE(isQuiet || isOrdinary || !row.check.empty()) << row.place;
}

INSTANTIATE_TEST_SUITE_P(Pages, TableLine, testing::ValuesIn(lines()),
                         [](const auto& one) { return nameOf(one.param); });

}  // namespace
}  // namespace pages
