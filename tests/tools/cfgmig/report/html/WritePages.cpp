// Writes the pages that the browser tests look at into a directory: of sample ledgers, and of the examples as the tool
// itself would.
// Usage: write_report_pages DIRECTORY
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include "ConfigFile.h"
#include "SampleReports.h"
#include "ledger/LedgerBuilder.h"
#include "report/html/HtmlReport.h"

namespace {

bool writePage(const std::string& path, tool::Report report) {
  report.mismatches = sumErrors(report.ledger);
  std::ofstream out(path, std::ios::binary);
  writeHtml(report, out);
  out.flush();
  if (!out) std::cerr << path << ": cannot be written\n";
  return out.good();
}

bool writeSample(const std::string& path, const SampleLedger& sample, bool isApplied = false) {
  tool::Report report = sample::reportOf(sample.ledger());
  if (isApplied) {
    report.outcome.kind = tool::Outcome::Kind::applied;
    report.outcome.backup = "/opt/zor/6.3/etc/zorslapd.conf.2026-11-21T09-14-00Z";
  }
  return writePage(path, std::move(report));
}

tool::InputFile inputOf(const std::string& role, const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return tool::inputOf(role, path, std::string(std::istreambuf_iterator<char>(in), {}));
}

bool writeExample(const std::string& path, const std::string& version) {
  const std::string folder = std::string(CFGMIG_EXAMPLES) + "/" + version;
  ConfigFile old((folder + "/old.ldif").c_str(), nullptr);
  ConfigFile now((folder + "/new.ldif").c_str(), nullptr);
  old.getDns();
  now.getDns();
  const tool::Ledger ledger = tool::migrate(old, now, version);
  tool::Report report(ledger, false);
  report.findings = findAll(ledger, {[](const std::string&) { return false; }});
  report.toolVersion = "0.1.0";
  report.time = "2026-11-21T09:14:00Z";
  report.inputs = {inputOf("old", folder + "/old.ldif"), inputOf("new", folder + "/new.ldif")};
  report.options.target = folder + "/new.ldif";
  return writePage(path, std::move(report));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: write_report_pages DIRECTORY\n";
    return 2;
  }
  const std::string directory = argv[1];
  bool areWritten = writeSample(directory + "/small.html", *sample::everyFate()) &&
                    writeSample(directory + "/hostile.html", *sample::hostile()) &&
                    writeSample(directory + "/large.html", *sample::ofSize(50000)) &&
                    // All that only a large page has, and still quick to look at as a whole.
                    writeSample(directory + "/many.html", *sample::ofSize(5000)) &&
                    writeSample(directory + "/same.html", *sample::allSame(), true) &&
                    writeSample(directory + "/lost.html", *sample::allLost(), true);
  for (const char* version : {"4.1", "5.1", "5.2", "6.0"}) {
    areWritten = areWritten && writeExample(directory + "/example-" + version + ".html", version);
  }
  return areWritten ? 0 : 1;
}
