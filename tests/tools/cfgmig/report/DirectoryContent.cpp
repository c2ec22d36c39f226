#include "DirectoryContent.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "Base64.h"
#include "NormalDn.h"

namespace {

// Thrown when a server would refuse a record.
struct Refused : std::runtime_error {
  using std::runtime_error::runtime_error;
};

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  return text;
}

struct Pair {
  std::string name;
  std::string value;
};

// "name: value", "name:: base64"
Pair pairOf(const std::string& line) {
  const std::size_t colon = line.find(':');
  if (colon == std::string::npos || colon == 0) throw Refused("a line without a name: " + line);
  Pair pair{line.substr(0, colon), {}};
  const bool isEncoded = line.substr(colon + 1, 1) == ":";
  std::string value = line.substr(colon + (isEncoded ? 2 : 1));
  value.erase(0, std::min(value.find_first_not_of(' '), value.size()));
  if (isEncoded && !cfgstore::decodeBase64InPlace(value, 0)) throw Refused("no base64: " + line);
  if (!isEncoded) {
    for (const char character : value) {
      if (static_cast<unsigned char>(character) >= 0x80) throw Refused("a plain value beyond ASCII: " + line);
    }
  }
  pair.value = value;
  return pair;
}

struct Record {
  std::vector<std::string> lines;  // unfolded, without comments
  bool saysNoParent = false;       // a comment does
};

std::vector<Record> recordsOf(const std::string& text) {
  std::vector<std::string> logical;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    if (line.size() > 78 && !line.starts_with('#')) throw Refused("a line that is not folded");
    if (line.starts_with(' ') && !logical.empty()) {
      logical.back() += line.substr(1);
    } else {
      logical.push_back(line);
    }
  }
  std::vector<Record> records(1);
  for (const std::string& line : logical) {
    if (line.empty()) {
      records.emplace_back();
    } else if (line.starts_with('#')) {
      records.back().saysNoParent = records.back().saysNoParent || line.find("has no parent") != std::string::npos;
    } else {
      records.back().lines.push_back(line);
    }
  }
  if (records.front().lines != std::vector<std::string>{"version: 1"}) throw Refused("no version line");
  records.erase(records.begin());
  std::erase_if(records, [](const Record& record) { return record.lines.empty(); });
  return records;
}

class Server {
 public:
  Server(DirectoryContent& content, Application& application) : m_content(content), m_application(application) {}

  void apply(const Record& record) {
    if (record.lines.size() < 2) throw Refused("a record of one line");
    const Pair dn = pairOf(record.lines[0]);
    const Pair type = pairOf(record.lines[1]);
    const auto normal = cfgstore::normalDn(dn.value);
    if (dn.name != "dn" || type.name != "changetype" || !normal) throw Refused("no dn and changetype");
    const std::vector<std::string> lines(record.lines.begin() + 2, record.lines.end());
    if (type.value == "add") {
      add(*normal, lines, record.saysNoParent);
    } else if (type.value == "delete") {
      remove(*normal, lines);
    } else if (type.value == "modify") {
      modify(*normal, lines);
    } else {
      throw Refused("an unknown changetype");
    }
    ++m_application.records;
  }

 private:
  void add(const std::string& dn, const std::vector<std::string>& lines, bool saysNoParent) {
    if (m_content.count(dn) > 0) throw Refused("the entry is there: " + dn);
    const std::string parent(cfgstore::parentOfNormalDn(dn));
    if (!parent.empty() && m_content.count(parent) == 0) {
      if (!saysNoParent) throw Refused("the entry has no parent: " + dn);
      ++m_application.inTheAir;
    }
    auto& entry = m_content[dn];
    for (const std::string& line : lines) {
      const Pair pair = pairOf(line);
      if (!entry[lowerCase(pair.name)].insert(pair.value).second) throw Refused("a value twice: " + line);
    }
  }

  void remove(const std::string& dn, const std::vector<std::string>& lines) {
    if (!lines.empty()) throw Refused("a deletion with lines");
    if (m_content.erase(dn) == 0) throw Refused("the entry is not there: " + dn);
    for (const auto& [other, attributes] : m_content) {
      if (cfgstore::parentOfNormalDn(other) == dn) throw Refused("the entry has children: " + dn);
    }
  }

  void modify(const std::string& dn, const std::vector<std::string>& lines) {
    const auto found = m_content.find(dn);
    if (found == m_content.end()) throw Refused("the entry is not there: " + dn);
    auto entry = found->second;
    if (lines.empty() || lines.back() != "-") throw Refused("a modification without its end");
    for (std::size_t i = 0; i < lines.size();) {
      const Pair operation = pairOf(lines[i++]);
      std::vector<std::string> values;
      for (; lines[i] != "-"; ++i) {
        const Pair pair = pairOf(lines[i]);
        if (pair.name != operation.value) throw Refused("another attribute: " + lines[i]);
        values.push_back(pair.value);
      }
      ++i;
      change(entry, operation.name, lowerCase(operation.value), values);
    }
    found->second = entry;
  }

  static void change(std::map<std::string, std::set<std::string>>& entry, const std::string& operation,
                     const std::string& attribute, const std::vector<std::string>& values) {
    if (operation == "add") {
      if (values.empty()) throw Refused("an addition of nothing");
      for (const std::string& value : values) {
        if (!entry[attribute].insert(value).second) throw Refused("the value is there: " + attribute);
      }
    } else if (operation == "delete") {
      if (entry.count(attribute) == 0) throw Refused("the attribute is not there: " + attribute);
      for (const std::string& value : values) {
        if (entry[attribute].erase(value) == 0) throw Refused("the value is not there: " + attribute);
      }
      if (values.empty() || entry[attribute].empty()) entry.erase(attribute);
    } else if (operation == "replace") {
      if (values.size() != 1 || entry[attribute].size() != 1) throw Refused("a replacement of several: " + attribute);
      if (entry[attribute].count(values.front()) > 0) throw Refused("a replacement by the same: " + attribute);
      entry[attribute] = {values.front()};
    } else {
      throw Refused("an unknown operation");
    }
  }

  DirectoryContent& m_content;
  Application& m_application;
};

}  // namespace

DirectoryContent contentOf(const cfgstore::Snapshot& snapshot) {
  DirectoryContent content;
  for (const auto& entry : snapshot.entries()) {
    auto& attributes = content[std::string(entry.normal)];
    for (const auto& attribute : snapshot.attributesOf(entry)) {
      auto& values = attributes[lowerCase(std::string(attribute.name))];
      for (const auto& value : snapshot.valuesOf(attribute)) values.insert(std::string(value.value));
    }
  }
  return content;
}

std::string ldifOf(const DirectoryContent& content) {
  std::vector<std::string> dns;
  for (const auto& [dn, attributes] : content) dns.push_back(dn);
  const auto depth = [](std::string_view dn) {
    std::size_t count = 0;
    for (; !dn.empty(); dn = cfgstore::parentOfNormalDn(dn)) ++count;
    return count;
  };
  std::stable_sort(dns.begin(), dns.end(),
                   [&](const std::string& left, const std::string& right) { return depth(left) < depth(right); });
  std::string text;
  const auto line = [&](const std::string& name, const std::string& value) {
    text += name + ":: ";
    cfgstore::appendBase64(text, value);
    text += '\n';
  };
  for (const std::string& dn : dns) {
    if (!text.empty()) text += '\n';
    line("dn", dn);
    for (const auto& [name, values] : content.at(dn)) {
      for (const std::string& value : values) line(name, value);
    }
  }
  return text;
}

Application applyChanges(const std::string& changeRecords, DirectoryContent& content) {
  Application application;
  try {
    Server server(content, application);
    for (const Record& record : recordsOf(changeRecords)) server.apply(record);
  } catch (const Refused& refused) {
    application.error = refused.what();
  }
  return application;
}
