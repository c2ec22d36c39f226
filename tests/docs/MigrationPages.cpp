#include "MigrationPages.h"

#include <strings.h>

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace pages {
namespace {

std::string trimmed(const std::string& text) {
  const std::size_t first = text.find_first_not_of(' ');
  return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::vector<std::string> cellsOf(const std::string& line) {
  std::vector<std::string> cells;
  for (std::size_t at = 1; at < line.size();) {
    const std::size_t end = std::min(line.find('|', at), line.size());
    cells.push_back(trimmed(line.substr(at, end - at)));
    at = end + 1;
  }
  return cells;
}

using Cells = std::vector<std::string>;
const Cells kSettings = {"Entry", "When", "Setting", "Value", "What happens", "Goes to", "By", "To check"};
const Cells kEntries = {"Name", "DN"};
const Cells kLists = {"List"};

// What the columns say together has to make sense.
void check(const Row& row) {
  const bool goesSomewhere = row.goesTo.theSame || !row.goesTo.entry.empty();
  const bool isAboutEntry = row.subject == Subject::entry || row.subject == Subject::entryWithout;
  const bool happensToEntries = row.fate == Fate::merged || row.fate == Fate::added || row.fate == Fate::built;
  const bool happensToValues = row.fate == Fate::carried || row.fate == Fate::dropped || row.fate == Fate::addedByRule;
  const struct {
    bool wrong;
    const char* what;
  } checks[] = {
      {goesSomewhere != (row.fate == Fate::moved), "something that moves goes somewhere, and nothing else does"},
      {isAboutEntry != (row.match.kind == Match::Kind::none), "a setting has values, an entry has none"},
      {isAboutEntry ? happensToValues : happensToEntries, "this does not happen to it"},
      {(row.fate == Fate::addedByRule) != (row.match.kind == Match::Kind::literal), "what a rule adds is a value"},
      {row.circumstance == Circumstance::nothingThere && row.fate != Fate::lost, "with nothing there, it is lost"},
      {isAboutEntry && row.fate == Fate::keptNew && row.presence != Presence::newOnly, "only a new entry is kept"},
  };
  for (const auto& one : checks) {
    if (one.wrong) throw std::runtime_error(one.what);
  }
}

Row rowFrom(const Cells& cells, const std::string& place) {
  if (cells.size() != kSettings.size()) throw std::runtime_error("the line has not as many cells as the table");
  const When when = whenFrom(cells[1]);
  const Setting setting = settingFrom(cells[2]);
  Row row{.place = place,
          .about = cells[1] + " | " + cells[2] + " | " + cells[3],
          .entry = cells[0],
          .presence = when.presence,
          .circumstance = when.circumstance,
          .subject = setting.subject,
          .attribute = setting.attribute,
          .match = matchFrom(cells[3]),
          .fate = fateFrom(cells[4]),
          .goesTo = goesToFrom(cells[5]),
          .by = nameFrom(cells[6]),
          .check = cells[7]};
  check(row);
  return row;
}

class Reader {
 public:
  explicit Reader(const std::string& name) : m_file(name + ".md"), m_in(CFGMIG_PAGES "/" + m_file) {
    if (!m_in) throw std::runtime_error(m_file + ": cannot be read");
    if (name != kEveryVersion) m_page.version = name;
  }

  Page read() {
    std::string line;
    while (std::getline(m_in, line)) {
      ++m_line;
      try {
        take(line);
      } catch (const std::runtime_error& error) {
        throw std::runtime_error(place() + ": " + error.what());
      }
    }
    return std::move(m_page);
  }

 private:
  std::string place() const { return m_file + ":" + std::to_string(m_line); }

  void take(const std::string& line) {
    if (!line.starts_with('|')) m_header.clear();
    if (line.starts_with("## ")) m_section = line.substr(3);
    if (m_section == "Order" && line.size() > 3 && line.substr(1, 2) == ". ") {
      m_page.order.push_back(nameFrom(line.substr(3, line.find(':') - 3)));
    }
    if (!line.starts_with('|') || line.starts_with("|---")) return;
    const Cells cells = cellsOf(line);
    if (m_header.empty()) {
      m_header = cells;
    } else if (m_header == kSettings) {
      m_page.rows.push_back(rowFrom(cells, place()));
    } else if (m_header == kEntries) {
      m_page.dns[cells.at(0)] = nameFrom(cells.at(1));
    } else if (m_header == kLists) {
      m_page.lists.push_back(nameFrom(cells.at(0)));
    }
  }

  std::string m_file;
  std::ifstream m_in;
  Page m_page;
  int m_line = 0;
  std::string m_section;
  Cells m_header;
};

}  // namespace

const std::string& Page::dn(const std::string& name) const {
  const auto found = dns.find(name);
  if (found == dns.end()) throw std::runtime_error(version + ".md names no entry \"" + name + "\"");
  return found->second;
}

const Page& page(const std::string& name) {
  static std::map<std::string, Page> read;
  auto found = read.find(name);
  if (found == read.end()) found = read.emplace(name, Reader(name).read()).first;
  return found->second;
}

bool isList(const std::string& attribute) {
  const std::vector<std::string>& lists = page(kEveryVersion).lists;
  return std::any_of(lists.begin(), lists.end(), [&](const std::string& list) { return sameText(list, attribute); });
}

bool sameText(const std::string& left, const std::string& right) {
  return strcasecmp(left.c_str(), right.c_str()) == 0;
}

}  // namespace pages
