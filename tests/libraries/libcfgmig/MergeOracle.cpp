#include "MergeOracle.h"

#include <algorithm>
#include <set>

#include "SimpleDn.h"

namespace oracle {

namespace {

const std::set<std::string> kUnited = {
    "OBJECTCLASS",       "ZOR-SLAPDCACHEDATTRIBUTE", "ZOR-SLAPDSCHEMAADDITIONS", "ZOR-SLAPDINCLUDESCHEMA",
    "ZOR-SLAPDREFERRAL", "ZOR-SLAPDSETENV",          "ZOR-SLAPDSUFFIX",          "ZOR-SLAPDPLUGIN"};

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

}  // namespace

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

void removeIf(Configuration& in, const std::string& dn, const std::string& attribute,
              const std::function<bool(const std::string& value)>& condition) {
  if (Values* values = find(in, dn, attribute)) {
    Values kept;
    for (const std::string& value : *values) {
      if (!condition(value)) {
        kept.push_back(value);
      }
    }
    *values = kept;
    std::erase_if(in.entries[dn], [](const auto& held) { return held.second.empty(); });
  }
}

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

}  // namespace oracle
