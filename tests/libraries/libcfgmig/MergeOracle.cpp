#include "MergeOracle.h"

#include <algorithm>
#include <set>

#include "SimpleDn.h"

namespace oracle {

namespace {

const std::set<std::string> kUnited = {
    "OBJECTCLASS",       "ZOR-SLAPDCACHEDATTRIBUTE", "ZOR-SLAPDSCHEMAADDITIONS", "ZOR-SLAPDINCLUDESCHEMA",
    "ZOR-SLAPDREFERRAL", "ZOR-SLAPDSETENV",          "ZOR-SLAPDSUFFIX",          "ZOR-SLAPDPLUGIN"};

const char* const kOwnSchemas[] = {"V3.modifiedschema", "V3.config.at",    "V3.config.oc",    "V3.user.at",
                                   "V3.user.oc",        "V3.zor.at",       "V3.zor.oc",       "V3.system.at",
                                   "V3.system.oc",      "V3.ldapsyntaxes", "V3.matchingrules"};

const std::string kMain = "CN=CONFIGURATION";
const std::string kSchema = "CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
const std::string kReplication = "CN=REPLICATION,CN=CONFIGURATION";

std::string upper(std::string text) {
  for (char& c : text) {
    c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  }
  return text;
}

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

Values* find(Configuration& in, const std::string& dn, const std::string& attribute) {
  const auto entry = in.entries.find(dn);
  if (entry == in.entries.end()) {
    return nullptr;
  }
  for (auto& [name, values] : entry->second) {
    if (name == attribute) {
      return &values;
    }
  }
  return nullptr;
}

const Values* find(const Configuration& in, const std::string& dn, const std::string& attribute) {
  return find(const_cast<Configuration&>(in), dn, attribute);
}

// Nothing happens where there is no such entry.
void set(Configuration& in, const std::string& dn, const std::string& attribute, const std::string& value) {
  if (Values* values = find(in, dn, attribute)) {
    *values = {value};
  } else if (in.entries.contains(dn)) {
    in.entries[dn].push_back({attribute, {value}});
  }
}

void unite(Configuration& in, const std::string& dn, const std::string& attribute, const Values& more) {
  for (const std::string& value : more) {
    Values* values = find(in, dn, attribute);
    if (values == nullptr) {
      set(in, dn, attribute, value);
    } else if (std::find(values->begin(), values->end(), value) == values->end()) {
      values->push_back(value);
    }
  }
}

template <class Condition>
void removeIf(Configuration& in, const std::string& dn, const std::string& attribute, Condition condition) {
  if (Values* values = find(in, dn, attribute)) {
    std::erase_if(*values, condition);
    std::erase_if(in.entries[dn], [](const auto& held) { return held.second.empty(); });
  }
}

// Takes the first value away and gives it; "" when there is none.
bool takeFirst(Configuration& in, const std::string& dn, const std::string& attribute, std::string& value) {
  const Values* values = find(in, dn, attribute);
  if (values == nullptr) {
    return false;
  }
  value = values->front();
  removeIf(in, dn, attribute, [&, first = true](const std::string&) mutable { return std::exchange(first, false); });
  return true;
}

void drop(Configuration& in, const std::string& dn, const std::vector<std::string>& attributes) {
  for (const std::string& attribute : attributes) {
    std::string ignored;
    takeFirst(in, dn, attribute, ignored);
  }
}

bool carry(const std::string& dn, const std::string& newDn, bool moves, const Configuration& from, Configuration& to) {
  const auto entry = from.entries.find(dn);
  if (entry == from.entries.end()) {
    return false;
  }
  for (const auto& [name, values] : entry->second) {
    if (name == "OBJECTCLASS" || name == "ZOR-SLAPDVERSION" || (moves && name == "CN")) {
      continue;
    }
    if (!to.entries.contains(newDn)) {
      return false;
    }
    const Values* present = find(to, newDn, name);
    if (present == nullptr && moves) {
      return false;
    }
    if (present == nullptr || kUnited.contains(name)) {
      unite(to, newDn, name, values);
    } else if (present->front() != values.front()) {
      set(to, newDn, name, values.front());
    }
  }
  return true;
}

void addTo60(const std::string& dn, Configuration& from, Configuration& to) {
  if (dn == "CN=ADMIN AUDIT,CN=CONFIGURATION") {
    if (const Values* audit = find(from, dn, "ZOR-AUDIT")) {
      set(to, "CN=ADMIN AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION", "ZOR-AUDIT", audit->front());
    }
  } else if (dn == "CN=AUDIT,CN=CONFIGURATION") {
    drop(from, dn, {"ZOR-SLAPDLOG", "ZOR-AUDITVERSION", "ZOR-AUDITLOG"});
    moveEntry(dn, "CN=AUDIT,CN=LOG MANAGEMENT,CN=CONFIGURATION", from, to);
  } else {
    addEntry(dn, from, to);
  }
}

void cleanMainEntry(Configuration& from, Configuration& to) {
  drop(from, kMain,
       {"ZOR-SLAPDSUPPORTEDWEBADMVERSION", "ZOR-SLAPDERRORLOG", "ZOR-SLAPDTRACEMESSAGELOG",
        "ZOR-SLAPDSORTSRCHALLOWNONADMIN", "ZOR-SLAPDPAGEDRESALLOWNONADMIN", "ZOR-SLAPDPORT"});
  std::string value;
  if (takeFirst(from, kMain, "ZOR-SLAPDSYSLOGLEVEL", value) && value != "m") {
    set(to, "CN=ZORSLAPD,CN=LOG MANAGEMENT,CN=CONFIGURATION", "ZOR-SLAPDLOGOPTIONS", value);
  }
  if (takeFirst(from, kMain, "ZOR-SLAPDMAXPENDINGCHANGESDISPLAYED", value)) {
    set(to, kReplication, "ZOR-SLAPDMAXPENDINGCHANGESDISPLAYED", value);
  }
  const Values* encryption = find(from, kMain, "ZOR-SLAPDPWENCRYPTION");
  if (encryption != nullptr && upper(encryption->front()) == "IMASK") {
    drop(from, kMain, {"ZOR-SLAPDPWENCRYPTION"});
  }
}

void cleanDirectoryEntry(const std::string& dn, Configuration& from, Configuration& to) {
  drop(from, dn, {"ZOR-SLAPDBULKLOADERRORS", "ZOR-SLAPDCLIERRORS"});
  const Values* plugins = find(from, dn, "ZOR-SLAPDPLUGIN");
  if (plugins == nullptr) {
    return;
  }
  const auto plugin =
      std::find_if(plugins->begin(), plugins->end(), [](const auto& text) { return contains(text, "nonblocking"); });
  if (plugin == plugins->end()) {
    return;
  }
  const std::string definition = *plugin;
  removeIf(from, dn, "ZOR-SLAPDPLUGIN", [&](const std::string& value) { return value == definition; });
  const std::string key = "maxskippedreplerrors=";
  if (contains(definition, key)) {
    set(to, kReplication, "ZOR-SLAPDREPLMAXERRORS", definition.substr(definition.find(key) + key.size()));
  }
}

void mergeIn60(const std::string& dn, Configuration& from, Configuration& to) {
  if (dn == kMain) {
    cleanMainEntry(from, to);
  } else if (dn == "CN=DIRECTORY,CN=RDBM BACKENDS,CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION") {
    cleanDirectoryEntry(dn, from, to);
  } else if (dn == "CN=ADMIN,CN=CONFIGURATION") {
    drop(from, dn, {"ZOR-SLAPDERRORLOG", "ZOR-SLAPDPORT", "ZOR-SLAPDSECUREPORT"});
  } else if (dn == "CN=SSL,CN=CONFIGURATION") {
    drop(from, dn, {"ZOR-SLAPDSECUREPORT", "ZOR-SLAPDPORT"});
  } else if (dn == kSchema) {
    if (find(from, dn, "ZOR-SLAPDSCHEMAADDITIONS") == nullptr) {
      return;
    }
    removeIf(from, dn, "ZOR-SLAPDSCHEMAADDITIONS",
             [](const std::string& value) { return contains(value, "V3.modifiedschema"); });
  }
  mergeEntry(dn, from, to);
}

}  // namespace

Configuration configurationOf(const fake::Content& content) {
  Configuration result;
  for (const fake::Entry& entry : content.entries()) {
    const std::string dn = fake::simpleDn(entry.dn);
    result.order.push_back(dn);
    Attributes& attributes = result.entries[dn];
    for (const fake::Attribute& attribute : entry.attributes) {
      attributes.push_back({upper(attribute.name), attribute.values});
    }
  }
  return result;
}

bool sameSettings(const Configuration& left, const Configuration& right) {
  const auto sorted = [](Configuration configuration) {
    for (auto& [dn, attributes] : configuration.entries) {
      std::sort(attributes.begin(), attributes.end());
    }
    return configuration.entries;
  };
  return sorted(left) == sorted(right);
}

bool addEntry(const std::string& dn, const Configuration& from, Configuration& to) {
  const Values* naming = find(from, dn, "CN");
  const Values* classes = find(from, dn, "OBJECTCLASS");
  if (naming == nullptr || classes == nullptr || to.entries.contains(dn)) {
    return false;
  }
  to.order.push_back(dn);
  to.entries[dn] = {};
  unite(to, dn, "OBJECTCLASS", {classes->front(), classes->size() == 1 ? "TOP" : (*classes)[1]});
  for (const auto& [name, values] : from.entries.at(dn)) {
    unite(to, dn, name, values);
  }
  return true;
}

bool mergeEntry(const std::string& dn, const Configuration& from, Configuration& to) {
  return carry(dn, dn, false, from, to);
}

bool moveEntry(const std::string& dn, const std::string& newDn, const Configuration& from, Configuration& to) {
  return carry(dn, newDn, true, from, to);
}

void merge60(Configuration& from, Configuration& to) {
  const auto isNew = [present = to.entries](const std::string& dn) { return !present.contains(dn); };
  for (const std::string& dn : from.order) {
    if (isNew(dn)) {
      addTo60(dn, from, to);
    }
  }
  removeIf(from, kSchema, "ZOR-SLAPDINCLUDESCHEMA", [](const std::string& value) {
    return std::any_of(std::begin(kOwnSchemas), std::end(kOwnSchemas),
                       [&](const char* own) { return contains(value, own); });
  });
  for (const std::string& dn : from.order) {
    if (!isNew(dn)) {
      mergeIn60(dn, from, to);
    }
  }
}

}  // namespace oracle
