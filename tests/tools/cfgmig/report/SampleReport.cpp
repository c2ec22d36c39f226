#include "SampleReport.h"

#include <sstream>

#include "../ExamplePath.h"
#include "finding/Finding.h"
#include "ledger/LedgerBuilder.h"

namespace {

constexpr char kOld[] =
    "dn: cn=Configuration\n"
    "objectClass: top\n"
    "cn: Configuration\n"
    "zor-slapdErrorLog: /var/opt/zor/6.0/log/zor.log\n"
    "zor-slapdSizeLimit: 900\n"
    "zor-slapdAdminPW: Pl4nted-S3cret-1\n"
    "zor-slapdTimeLimit: 60\n"
    "zor-slapdTimeLimit: 61\n"
    "zor-slapdSysLogLevel: h\n"
    "\n"
    "dn: cn=Markup, cn=Configuration\n"
    "objectClass: top\n"
    "cn: Markup\n"
    "zor-note: <script>alert(1)</script> & \"quoted\" \\ 'too'\n"
    "zor-picture:: /9j/4EFC\n"
    "zor-bell:: YmVsbAcbWzMxbQo=\n"
    "zor-umlaut:: w7xibGljaA==\n"
    "zor-empty:\n"
    "zor-slapdPlugin: preoperation /var/opt/zor/6.0/lib/libx.so Init password=Pl4nted-S3cret-2 a=b\n"
    "zor-slapdMasterPW:: m1BsNG50ZWQtUzNjcmV0LTM=\n"
    "zor-repeated: Pl4nted-S3cret-1\n"
    "zor-dn: cn=Gone, cn=Configuration\n"
    "\n"
    "dn: cn=Given Up, cn=Configuration\n"
    "objectClass: top\n"
    "cn: Given Up\n"
    "zor-secret: Pl4nted-S3cret-4\n";

constexpr char kBefore[] =
    "dn: CN=CONFIGURATION\n"
    "objectClass: top\n"
    "cn: Configuration\n"
    "zor-slapdSizeLimit: 500\n"
    "zor-slapdAdminPW: Pl4nted-S3cret-5\n"
    "zor-slapdTimeLimit: 30\n"
    "\n"
    "dn: CN=LOG, CN=CONFIGURATION\n"
    "objectClass: top\n"
    "cn: LOG\n"
    "zor-slapdLogOptions: m\n";

constexpr char kResult[] =
    "dn: CN=CONFIGURATION\n"
    "objectClass: top\n"
    "cn: Configuration\n"
    "zor-slapdSizeLimit: 900\n"
    "zor-slapdAdminPW: Pl4nted-S3cret-1\n"
    "zor-slapdTimeLimit: 60\n"
    "\n"
    "dn: CN=LOG, CN=CONFIGURATION\n"
    "objectClass: top\n"
    "cn: LOG\n"
    "zor-slapdLogOptions: h\n"
    "\n"
    "dn: cn=Markup, cn=Configuration\n"
    "objectClass: top\n"
    "cn: Markup\n"
    "zor-note: <script>alert(1)</script> & \"quoted\" \\ 'too'\n"
    "zor-picture:: /9j/4EFC\n"
    "zor-bell:: YmVsbAcbWzMxbQo=\n"
    "zor-umlaut:: w7xibGljaA==\n"
    "zor-empty:\n"
    "zor-slapdPlugin: preoperation /var/opt/zor/6.0/lib/libx.so Init password=Pl4nted-S3cret-2 a=b\n"
    "zor-slapdMasterPW:: m1BsNG50ZWQtUzNjcmV0LTM=\n"
    "zor-repeated: Pl4nted-S3cret-1\n"
    "zor-dn: cn=Gone, cn=Configuration\n"
    "ZOR-SLAPDMIGRATIONINFO: 4.1 MASTER\n";

// An event does not own its values.
constexpr std::string_view kOneSecret[] = {"Pl4nted-S3cret-1"};
constexpr std::string_view kTwoValues[] = {"\xff\xfe", "with Pl4nted-S3cret-1 inside"};

void fillIn(tool::Report& report) {
  report.findings = tool::findAll(report.ledger, {[](const std::string&) { return false; }});
  report.mismatches = tool::sumErrors(report.ledger);
  report.toolVersion = "0.1.0";
  report.time = "2026-11-21T09:14:00Z";
}

}  // namespace

std::unique_ptr<SampleLedger> richLedger() {
  auto sample = std::make_unique<SampleLedger>(kOld, kBefore, kResult);
  using tool::ValueFate;
  sample->setFate("cn=Configuration", "zor-slapdTimeLimit", "61", ValueFate::lost, "mergeCfgEntry",
                  "only its first value is carried");
  sample->setFate("cn=Given Up,cn=Configuration", "zor-secret", "Pl4nted-S3cret-4", ValueFate::lost, "addTo60",
                  "the rule gave the entry up");
  sample->setFate("cn=Given Up,cn=Configuration", "cn", "Given Up", ValueFate::keptNew, "addTo60", "its own stands");
  sample->setEntry("cn=Given Up,cn=Configuration", tool::EntryFate::skipped, "addTo60", "the rule gave the entry up",
                   "");
  tool::LedgerEvent event;
  event.operation = static_cast<std::uint8_t>(cfgstore::Operation::setValue);
  event.changed = true;
  event.reason = sample->reason("mergeCfgEntry", "carries the values of the old entry");
  event.oldEntry = 0;
  event.dn = "CN=CONFIGURATION";
  event.attribute = "zor-slapdAdminPW";
  event.values = kOneSecret;
  sample->addEvent(event);
  event.onOld = true;
  event.operation = static_cast<std::uint8_t>(cfgstore::Operation::delValue);
  event.changed = false;
  event.rc = 53;
  event.oldEntry = cfgstore::Snapshot::kNone;
  event.attribute = "zor-odd";
  event.values = kTwoValues;
  sample->addEvent(event);
  sample->addMessage("mergeIn60: delValue for zor-slapdAdminPW=Pl4nted-S3cret-1 returned rc=53\x1b[31m");
  return sample;
}

tool::Report reportOf(const tool::Ledger& ledger, bool showSecrets) {
  tool::Report report(ledger, showSecrets);
  fillIn(report);
  report.recognisedFrom = "the entry CN=AUDIT,CN=CONFIGURATION";
  report.inputs = {tool::inputOf("old", "/etc/zor/old.conf", "old"), tool::inputOf("new", "/etc/zor/new.conf", "new")};
  report.options.target = "/etc/zor/new.conf";
  return report;
}

std::string written(const tool::Report& report, tool::Format format) {
  std::ostringstream out;
  writeReport(report, format, out);
  return out.str();
}

ExampleMerge::ExampleMerge(const std::string& version, const std::string& oldFile)
    : m_old(std::make_unique<ConfigFile>(examplePath(oldFile).c_str(), nullptr)),
      m_new(std::make_unique<ConfigFile>(examplePath(version + "/new.ldif").c_str(), nullptr)) {
  m_old->getDns();
  m_new->getDns();
  m_ledger = tool::migrate(*m_old, *m_new, version);
}

tool::Report ExampleMerge::report(bool showSecrets) const {
  tool::Report report(m_ledger, showSecrets);
  fillIn(report);
  report.inputs = {tool::inputOf("old", "/etc/zor/old.conf", "old"), tool::inputOf("new", "/etc/zor/new.conf", "new")};
  report.options.target = "/etc/zor/new.conf";
  return report;
}
