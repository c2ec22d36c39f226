#include "SampleReports.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "Base64.h"

namespace sample {
namespace {

using tool::ValueFate;

// What became of an old value that did not arrive, and why.
struct Told {
  ValueFate fate;
  const char* method;
  const char* words;
};
using Teller = std::function<std::optional<Told>(std::string_view normalDn, std::string_view attribute)>;

struct Texts {
  std::string old;
  std::string before;
  std::string result;
};

std::unique_ptr<SampleLedger> ledgerOf(const Texts& texts, const Teller& tell) {
  auto sample = std::make_unique<SampleLedger>(texts.old, texts.before, texts.result, "5.1");
  tool::Ledger& ledger = sample->edit();
  for (std::size_t i = 0; i < ledger.oldValues.size(); ++i) {
    const cfgstore::SnapshotAttribute& attribute = ledger.old.attributeOf(ledger.old.values()[i]);
    const std::optional<Told> told = tell(ledger.old.entryOf(attribute).normal, attribute.name);
    if (told) ledger.oldValues[i] = {told->fate, sample->reason(told->method, told->words), tool::kNoValue};
  }
  sample->count();
  return sample;
}

constexpr char kOld[] =
    "dn: cn=Configuration\n"
    "objectClass: top\n"
    "objectClass: zor-slapdTop\n"
    "cn: Configuration\n"
    "zor-slapdVersion: 5.1\n"
    "zor-slapdPort: 1389\n"
    "zor-slapdSearchSizeLmt: 2000\n"
    "zor-slapdAdminDN: cn=Directory Keeper\n"
    "zor-slapdAdminPW: Pl4nted-S3cret\n"
    "zor-slapdSysLogLevel: h\n"
    "zor-slapdSortSrchAllowNonAdmin: TRUE\n"
    "zor-slapdPagedResLmt: 3\n"
    "zor-slapdNoticeText: Property of Acme. This directory holds personal data; whoever reads it without being\n"
    "  allowed to will be reported to the data protection officer.\n"
    "zor-slapdContact:: SsO8cmdlbiBXZWnDnywgVmVyemVpY2huaXNkaWVuc3QsIEvDtmxu\n"
    "\n"
    "dn: cn=Admin, cn=Configuration\n"
    "objectClass: top\n"
    "objectClass: zor-slapdAdmin\n"
    "cn: Admin\n"
    "zor-slapdPort: 4389\n"
    "zor-slapdAdminThreads: 8\n"
    "\n"
    "dn: cn=Front End, cn=Configuration\n"
    "objectClass: top\n"
    "cn: Front End\n"
    "zor-slapdSetenv: TZ=Europe/Berlin\n"
    "zor-slapdSetenv: MALLOC_ARENA_MAX=4\n"
    "zor-slapdSetenv: ACLCACHE=YES\n"
    "\n"
    "dn: cn=RDBM Backends, cn=Configuration\n"
    "objectClass: top\n"
    "objectClass: container\n"
    "cn: RDBM Backends\n"
    "\n"
    "dn: cn=Directory, cn=RDBM Backends, cn=Configuration\n"
    "objectClass: top\n"
    "objectClass: zor-slapdRdbmBackend\n"
    "cn: Directory\n"
    "zor-slapdSuffix: o=acme,c=de\n"
    "zor-slapdSuffix: o=acme,c=at\n"
    "zor-slapdDbInstance: ldapdb2\n"
    "zor-slapdPlugin: database /opt/zor/5.1/lib/libback-rdbm.so rdbm_backend_init\n"
    "zor-slapdReadOnly: FALSE\n"
    "\n"
    "dn: cn=Event Notification, cn=Configuration\n"
    "objectClass: top\n"
    "cn: Event Notification\n"
    "zor-slapdEnableEventNotification: TRUE\n"
    "zor-slapdMaxEventsPerConnection: 100\n"
    "zor-slapdMaxEventsTotal: 0\n"
    "\n"
    "dn: cn=Audit, cn=Configuration\n"
    "objectClass: top\n"
    "cn: Audit\n"
    "zor-audit: true\n"
    "zor-auditLog: /var/log/zor/audit.log\n"
    "\n"
    "dn: cn=Retired, cn=Configuration\n"
    "objectClass: top\n"
    "cn: Retired\n"
    "zor-retired: yes\n"
    "zor-retiredSince: 2003\n";

constexpr char kBefore[] =
    "dn: CN=CONFIGURATION\n"
    "objectClass: top\n"
    "objectClass: zor-slapdTop\n"
    "cn: Configuration\n"
    "zor-slapdVersion: 6.0\n"
    "zor-slapdPort: 389\n"
    "zor-slapdSearchSizeLmt: 500\n"
    "zor-slapdAdminDN: cn=root\n"
    "zor-slapdAdminPW: N3w-Pl4nted-S3cret\n"
    "\n"
    "dn: CN=ADMIN, CN=CONFIGURATION\n"
    "objectClass: top\n"
    "objectClass: zor-slapdAdmin\n"
    "cn: Admin\n"
    "zor-slapdPort: 3538\n"
    "\n"
    "dn: CN=FRONT END, CN=CONFIGURATION\n"
    "objectClass: top\n"
    "cn: Front End\n"
    "zor-slapdSetenv: MALLOC_ARENA_MAX=4\n"
    "zor-slapdSetenv: LDAP_MODE=64\n"
    "\n"
    "dn: CN=LOG MANAGEMENT, CN=CONFIGURATION\n"
    "objectClass: container\n"
    "cn: Log Management\n"
    "\n"
    "dn: CN=ZORSLAPD, CN=LOG MANAGEMENT, CN=CONFIGURATION\n"
    "objectClass: top\n"
    "cn: ZORSLAPD\n"
    "zor-slapdLogOptions: m\n"
    "\n"
    "dn: CN=RDBM BACKENDS, CN=CONFIGURATION\n"
    "objectClass: top\n"
    "objectClass: container\n"
    "cn: RDBM Backends\n"
    "\n"
    "dn: CN=DIRECTORY, CN=RDBM BACKENDS, CN=CONFIGURATION\n"
    "objectClass: top\n"
    "objectClass: zor-slapdRdbmBackend\n"
    "cn: Directory\n"
    "zor-slapdPlugin: database libback-rdbm.so rdbm_backend_init\n"
    "zor-slapdReadOnly: FALSE\n";

constexpr char kResult[] =
    "dn: CN=CONFIGURATION\n"
    "objectClass: top\n"
    "objectClass: zor-slapdTop\n"
    "cn: Configuration\n"
    "zor-slapdVersion: 6.0\n"
    "zor-slapdPort: 1389\n"
    "zor-slapdSearchSizeLmt: 2000\n"
    "zor-slapdAdminDN: cn=Directory Keeper\n"
    "zor-slapdAdminPW: Pl4nted-S3cret\n"
    "zor-slapdNoticeText: Property of Acme. This directory holds personal data; whoever reads it without being\n"
    "  allowed to will be reported to the data protection officer.\n"
    "zor-slapdContact:: SsO8cmdlbiBXZWnDnywgVmVyemVpY2huaXNkaWVuc3QsIEvDtmxu\n"
    "zor-slapdMigrated: PENDING\n"
    "\n"
    "dn: CN=ADMIN, CN=CONFIGURATION\n"
    "objectClass: top\n"
    "objectClass: zor-slapdAdmin\n"
    "cn: Admin\n"
    "zor-slapdPort: 4389\n"
    "zor-slapdAdminThreads: 8\n"
    "\n"
    "dn: CN=FRONT END, CN=CONFIGURATION\n"
    "objectClass: top\n"
    "cn: Front End\n"
    "zor-slapdSetenv: MALLOC_ARENA_MAX=4\n"
    "zor-slapdSetenv: LDAP_MODE=64\n"
    "zor-slapdSetenv: TZ=Europe/Berlin\n"
    "\n"
    "dn: CN=LOG MANAGEMENT, CN=CONFIGURATION\n"
    "objectClass: container\n"
    "cn: Log Management\n"
    "\n"
    "dn: CN=ZORSLAPD, CN=LOG MANAGEMENT, CN=CONFIGURATION\n"
    "objectClass: top\n"
    "cn: ZORSLAPD\n"
    "zor-slapdLogOptions: h\n"
    "\n"
    "dn: CN=RDBM BACKENDS, CN=CONFIGURATION\n"
    "objectClass: top\n"
    "objectClass: container\n"
    "cn: RDBM Backends\n"
    "\n"
    "dn: CN=DIRECTORY, CN=RDBM BACKENDS, CN=CONFIGURATION\n"
    "objectClass: top\n"
    "objectClass: zor-slapdRdbmBackend\n"
    "cn: Directory\n"
    "zor-slapdPlugin: database libback-rdbm.so rdbm_backend_init\n"
    "zor-slapdReadOnly: FALSE\n"
    "zor-slapdSuffix: o=acme,c=de\n"
    "zor-slapdSuffix: o=acme,c=at\n"
    "\n"
    "dn: cn=Event Notification, cn=Configuration\n"
    "objectClass: top\n"
    "cn: Event Notification\n"
    "zor-slapdEnableEventNotification: TRUE\n"
    "zor-slapdMaxEventsPerConnection: 100\n"
    "zor-slapdMaxEventsTotal: 0\n"
    "\n"
    "dn: CN=AUDIT, CN=CONFIGURATION\n"
    "objectClass: top\n"
    "cn: Audit\n"
    "zor-audit: true\n";

std::optional<Told> tellEveryFate(std::string_view normal, std::string_view attribute) {
  if (normal == "CN=RETIRED,CN=CONFIGURATION") {
    return Told{ValueFate::dropped, "mergeIn51", "the new server has no such entry"};
  }
  if (attribute == "zor-slapdSortSrchAllowNonAdmin" || attribute == "zor-slapdPagedResLmt") {
    return Told{ValueFate::dropped, "mergeIn51", "the new server no longer has this setting"};
  }
  if (attribute == "zor-slapdDbInstance") {
    return Told{ValueFate::cleaned, "removeInstance", "a clean-up removes what binds it to one database instance"};
  }
  if (attribute == "zor-auditLog") return Told{ValueFate::lost, "mergeCfgEntry", "the store refused it: code 53"};
  if (attribute == "zor-slapdVersion" || attribute == "zor-slapdPlugin") {
    return Told{ValueFate::keptNew, "mergeCfgEntry", "the new server's own value stands"};
  }
  return std::nullopt;
}

std::string base64Line(const std::string& attribute, std::string_view bytes) {
  std::string line = attribute + ":: ";
  cfgstore::appendBase64(line, bytes);
  return line + "\n";
}

// Each of them would do something if it were not written as text, or could not be seen.
constexpr std::string_view kHostile[] = {
    "</script><script>window.planted = 1</script>",
    "<img src=x onerror=\"window.planted = 2\">",
    "<svg onload=window.planted=3>",
    "javascript:window.planted=4",
    "<a href=\"javascript:window.planted=5\">click</a>",
    "\"><script>window.planted=6</script>",
    "' autofocus onfocus='window.planted=7",
    "</code></td></tr></table></details><h1>Nothing was lost</h1>",
    "<!-- --><style>body { display: none }</style><!--",
    "{{verdict}} {{script}} &lt;b&gt; &#60;i&#62; ]]>",
    "<iframe srcdoc=\"<script>parent.planted=8</script>\"></iframe>",
    "<meta http-equiv=refresh content=\"0;url=http://127.0.0.1:9/\">",
    "admin\xE2\x80\xAEtxt.exe\xE2\x80\xAC",
    "two\nlines\r\nand a\ttab",
    "zero\xE2\x80\x8Bwidth\xEF\xBB\xBF, line\xE2\x80\xA8separator, soft\xC2\xADhyphen, bell\a, escape\x1B[31m",
    "no UTF-8: \xFF\xFE\xC0\x80\xED\xA0\x80",
    "a word that has no end, which "
    "goesonandonandonandonandonandonandonandonandonandonandonandonandonandonandonandonandonandonandonandonandonandonan"
    "d",
};

}  // namespace

std::unique_ptr<SampleLedger> everyFate() { return ledgerOf({kOld, kBefore, kResult}, tellEveryFate); }

std::unique_ptr<SampleLedger> hostile() {
  Texts texts;
  texts.before = "dn: cn=Configuration\nobjectClass: top\ncn: Configuration\n";
  texts.old = texts.before;
  texts.result = texts.before;
  for (const std::string_view value : kHostile) {
    texts.old += base64Line("zor-carried", value);
    texts.old += base64Line("zor-dropped", value);
    texts.result += base64Line("zor-carried", value);
    texts.before += base64Line("zor-replaced", value);
  }
  for (const std::string_view value : kHostile) {
    std::string rdn = "cn=";
    for (const char letter : value) {
      // As RFC 4514 has it, so that the DN is one.
      constexpr char kDigits[] = "0123456789abcdef";
      const auto byte = static_cast<unsigned char>(letter);
      const bool isPlain =
          byte >= 0x80 || (byte > ' ' && std::string_view(",+\"\\<>;=#").find(letter) == std::string_view::npos);
      if (isPlain || letter == ' ') {
        rdn += letter;
      } else if (byte > ' ') {
        (rdn += '\\') += letter;
      } else {
        ((rdn += '\\') += kDigits[byte >> 4U]) += kDigits[byte & 15U];
      }
    }
    const std::string entry = "\n" + base64Line("dn", rdn + ",cn=Configuration") + "objectClass: top\n";
    texts.old += entry;
    texts.result += entry;
  }
  return ledgerOf(texts, [](std::string_view, std::string_view attribute) -> std::optional<Told> {
    if (attribute != "zor-dropped") return std::nullopt;
    return Told{ValueFate::dropped, "<b>mergeIn51", "</summary><script>window.planted = 9</script>"};
  });
}

std::unique_ptr<SampleLedger> ofSize(std::size_t oldValues) {
  constexpr std::size_t kManyValues = 1000;  // of one attribute of one entry
  Texts texts;
  texts.old = texts.before = texts.result = "dn: cn=Configuration\ncn: Configuration\n";
  std::size_t written = 1;
  const auto toAll = [&](const std::string& text) {
    texts.old += text;
    texts.before += text;
    texts.result += text;
  };
  for (std::size_t i = 0; i < kManyValues && written + 20 < oldValues; ++i, ++written) {
    toAll("zor-schema: ( 1.3.6.1.4.1.99999.1." + std::to_string(i) + " NAME 'setting" + std::to_string(i) +
          "' SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 )\n");
  }
  for (std::size_t entry = 0; written < oldValues; ++entry) {
    const std::string number = std::to_string(entry);
    // Half of the entries below one parent, the others below a hundred of them.
    const std::string parent = entry < 100 || entry % 2 == 0 ? "" : ", cn=Part " + std::to_string(entry / 2 % 100);
    const std::string cn = (entry < 100 ? "Part " : "Unit ") + number;
    toAll("\ndn: cn=" + cn + parent + ", cn=Configuration\ncn: " + cn + "\n");
    ++written;
    for (std::size_t i = 0; i < 9 && written < oldValues; ++i, ++written) {
      const std::string name = std::to_string(i);
      const std::string value = "value " + name + " of unit " + number + "\n";
      const std::size_t kind = (entry * 9 + i) * 37 % 100;
      if (kind < 60) {
        toAll("zor-same" + name + ": " + value);
      } else if (kind < 85) {
        texts.old += "zor-carried" + name + ": " + value;
        texts.result += "zor-carried" + name + ": " + value;
        if (kind < 70) texts.before += "zor-carried" + name + ": the new server's " + value;
      } else if (kind < 89) {
        texts.old += "zor-kept" + name + ": " + value;
        texts.before += "zor-kept" + name + ": the new server's own\n";
        texts.result += "zor-kept" + name + ": the new server's own\n";
      } else {
        texts.old += (kind < 99 ? "zor-dropped" : "zor-lost") + name + ": " + value;
      }
    }
    if (entry % 50 == 0) texts.result += "zor-migrated: TRUE\n";
  }
  return ledgerOf(texts, [](std::string_view, std::string_view attribute) -> std::optional<Told> {
    if (attribute.starts_with("zor-dropped")) {
      return Told{ValueFate::dropped, "mergeIn51", "the new server no longer has this setting"};
    }
    if (attribute.starts_with("zor-lost"))
      return Told{ValueFate::lost, "mergeCfgEntry", "the store refused it: code 53"};
    if (attribute.starts_with("zor-kept")) {
      return Told{ValueFate::keptNew, "mergeCfgEntry", "the new server's own value stands"};
    }
    return std::nullopt;
  });
}

std::unique_ptr<SampleLedger> allLost() {
  const std::string entry = "dn: cn=Configuration\ncn: Configuration\n";
  return ledgerOf({entry + "zor-first: 1\nzor-second: 2\n", entry, entry},
                  [](std::string_view, std::string_view attribute) -> std::optional<Told> {
                    if (attribute == "cn") return std::nullopt;
                    return Told{ValueFate::lost, "mergeCfgEntry", "the store refused it: code 53"};
                  });
}

std::unique_ptr<SampleLedger> allSame() {
  const std::string entry = "dn: cn=Configuration\ncn: Configuration\nzor-port: 389\n";
  return ledgerOf({entry, entry, entry}, [](std::string_view, std::string_view) { return std::optional<Told>(); });
}

tool::Report reportOf(const tool::Ledger& ledger, bool showSecrets) {
  using tool::Severity;
  static constexpr tool::FindingKind kKinds[] = {
      {"value-lost", Severity::error, "Old values did not arrive",
       "The new server will not have these settings, and nothing else tells it.",
       "Set them by hand in the result, or find out what the store refused and migrate again."},
      {"old-path", Severity::warning, "Plug-ins and paths still point into the old installation",
       "They stop working on the day on which the old server is removed.",
       "Put the path of the new server there, or keep the old file."},
      {"include-twice", Severity::note, "A setting is named twice", "The second one has no effect.",
       "Nothing has to be done."},
  };
  tool::Report report(ledger, showSecrets);
  for (const tool::FindingKind& kind : kKinds) {
    if (kind.severity == Severity::error && ledger.count(ValueFate::lost) == 0) continue;
    if (ledger.count(ValueFate::same) == ledger.oldValues.size()) continue;
    for (std::size_t entry = 0; entry < 2 && entry < ledger.result.entries().size(); ++entry) {
      tool::Finding finding;
      finding.kind = &kind;
      const cfgstore::SnapshotEntry& place = ledger.result.entries()[entry];
      finding.what = "1 value of an entry, for the tests";
      finding.id = std::string(kind.id) + " " + std::string(place.normal);
      finding.places.push_back({tool::Content::result, static_cast<std::uint32_t>(entry), place.firstAttribute,
                                ledger.result.attributes()[place.firstAttribute].firstValue});
      report.findings.push_back(std::move(finding));
    }
  }
  report.toolVersion = "0.1.0";
  report.time = "2026-11-21T09:14:00Z";
  report.recognisedFrom = "zor-slapdVersion: 5.1";
  report.inputs = {{"old", "/srv/old/etc/zorslapd.conf", std::string(64, 'a'), 15206},
                   {"new", "/opt/zor/6.3/etc/zorslapd.conf", std::string(64, 'b'), 12214}};
  report.options.target = "/opt/zor/6.3/etc/zorslapd.conf";
  report.planPath = "migration.plan";
  report.outcome.schemas = {
      {tool::SchemaFile::Fate::toCopy, "/srv/old/etc/acme.oc", "/opt/zor/6.3/etc/acme.oc", "", ""},
      {tool::SchemaFile::Fate::missing, "/srv/old/etc/lost.at", "", "", ""}};
  return report;
}

}  // namespace sample
