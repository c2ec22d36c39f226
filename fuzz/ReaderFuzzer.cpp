// ReaderFuzzer.cpp -- any bytes are read as a file. What is accepted is written back byte for byte, and what is written
// holds the same. What is refused is refused with lines that are in the file. An inspection agrees with both.

#include <algorithm>
#include <string>
#include <string_view>

#include "ConfigStore.h"
#include "Fuzz.h"
#include "Inspection.h"
#include "LdifReader.h"
#include "Snapshot.h"
#include "SnapshotText.h"

namespace {

using cfgstore::ConfigStore;

std::size_t linesOf(std::string_view text) {
  const auto newlines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
  return newlines + (text.empty() || text.ends_with('\n') ? 0 : 1);
}

void checkRefusal(const cfgstore::OpenError& error, std::string_view text) {
  fuzz::require(!error.problems().empty(), "a refusal tells what is wrong");
  std::size_t above = 0;
  for (const cfgstore::Problem& problem : error.problems()) {
    fuzz::require(!problem.text.empty(), "a problem has a text");
    fuzz::require(problem.line >= 1 && problem.line <= linesOf(text), "a problem has a line inside the file");
    fuzz::require(problem.line >= above, "problems are in the order of the file", problem.text);
    above = problem.line;
  }
}

// Every value stands on the line that the snapshot names.
void checkLines(const cfgstore::Snapshot& snapshot, std::string_view text) {
  const std::size_t lines = linesOf(text);
  std::size_t above = 0;
  for (const cfgstore::SnapshotEntry& entry : snapshot.entries()) {
    fuzz::require(entry.line > above && entry.line <= lines, "entries are in the order of their lines", entry.dn);
    above = entry.line;
    for (const cfgstore::SnapshotAttribute& attribute : snapshot.attributesOf(entry)) {
      std::size_t previous = entry.line;
      fuzz::require(attribute.values >= 1, "an attribute has a value", attribute.name);
      for (const cfgstore::SnapshotValue& value : snapshot.valuesOf(attribute)) {
        fuzz::require(value.line > previous && value.line <= lines, "values are in the order of their lines");
        fuzz::require(value.value.find('\0') == std::string_view::npos, "a value has no zero byte");
        previous = value.line;
      }
    }
  }
}

bool isPrintable(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x20; });
}

void checkRemarks(const cfgstore::Inspection& inspection, std::string_view text) {
  std::size_t above = 0;
  for (const cfgstore::Remark& remark : inspection.remarks) {
    fuzz::require(remark.line >= above && remark.line <= linesOf(text),
                  "remarks have lines of the file, in their order");
    fuzz::require(!remark.text.empty() && isPrintable(remark.text), "a remark is one line of text", remark.text);
    above = remark.line;
  }
  std::size_t shown = 0;
  std::size_t found = 0;
  for (const cfgstore::RemarkCount& count : inspection.counts) {
    fuzz::require(count.found >= 1 && count.shown <= count.found, "remarks are counted");
    shown += count.shown;
    found += count.found;
  }
  fuzz::require(shown == inspection.remarks.size(), "the counts speak of the remarks that are shown");
  fuzz::require(found == inspection.errors + inspection.warnings, "a remark is an error or a warning");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = fuzz::viewOf(data, size);
  const fuzz::MemoryFile file(text);
  const cfgstore::Inspection inspection = cfgstore::inspect(file.path());
  checkRemarks(inspection, text);
  try {
    ConfigStore store(file.path());
    fuzz::require(store.text() == text, "a file that was read is written back byte for byte");
    fuzz::require(!store.changed(), "a store that was only read has not changed");
    const cfgstore::Snapshot snapshot(store);
    checkLines(snapshot, text);
    fuzz::require(store.text() == text, "a snapshot changes nothing");
    const cfgstore::Snapshot again(store);
    fuzz::require(fuzz::textOf(again) == fuzz::textOf(snapshot), "two snapshots show the same");
    fuzz::require(inspection.errors == 0, "a file that opens has no errors");
    fuzz::require(inspection.entries == snapshot.entries().size(), "an inspection counts the entries");
    fuzz::require(inspection.values == snapshot.values().size(), "an inspection counts the values");
  } catch (const cfgstore::OpenError& error) {
    checkRefusal(error, text);
    // Opening ends at so many problems, with one more that says so.
    const std::size_t problems = std::min(error.problems().size(), cfgstore::kMostProblems);
    fuzz::require(inspection.errors >= problems, "an inspection finds every problem");
  }
  return 0;
}
