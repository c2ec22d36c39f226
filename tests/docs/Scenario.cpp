#include "Scenario.h"

#include <algorithm>
#include <stdexcept>

namespace scenario {

using pages::Match;
using pages::Row;
using Kind = pages::Match::Kind;

namespace {

bool contains(const std::string& value, const std::string& text) { return value.find(text) != std::string::npos; }

bool containsOneOf(const std::string& value, const std::vector<std::string>& texts) {
  return std::any_of(texts.begin(), texts.end(), [&](const std::string& text) { return contains(value, text); });
}

std::string otherCase(std::string text) {
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') {
      c = static_cast<char>(c - 'a' + 'A');
    } else if (c >= 'A' && c <= 'Z') {
      c = static_cast<char>(c - 'A' + 'a');
    }
  }
  return text;
}

std::string lowerCase(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = otherCase({c}).front();
  }
  return text;
}

std::string mixedCase(std::string text) {
  text.front() = otherCase(text).front();
  return text;
}

std::string around(const std::string& text) { return "before " + text + " behind"; }

// Values that just miss a condition.
Values nearMisses(const Match& match) {
  Values misses = {"something else"};
  for (const std::string& text : match.texts) {
    switch (match.kind) {
      case Kind::exactly:
        misses.insert(misses.end(), {otherCase(text), text + text, "h"});
        break;
      case Kind::inAnyCase:
        misses.insert(misses.end(), {"SHA", text + "ED", "X" + text});
        break;
      case Kind::firstContaining:
      case Kind::laterContaining:
      case Kind::eachContaining:
      case Kind::rest:
        misses.insert(misses.end(), {around(otherCase(text)), around(lowerCase(text)), text.substr(1),
                                     text.substr(0, text.size() - 1)});
        break;
      default:
        break;
    }
  }
  return misses;
}

// Whether a rule takes the value out of the old entry. A value that moves with its entry is only read there.
bool isTakenOut(const Row& row) {
  return row.fate == pages::Fate::dropped || (row.fate == pages::Fate::moved && !row.goesTo.theSame) ||
         (row.fate == pages::Fate::lost && row.circumstance == pages::Circumstance::nothingThere);
}

std::vector<Trial> trialsOfOther(const Row& row, const std::vector<Row>& siblings) {
  Values values = {"something else"};
  for (const Row& sibling : siblings) {
    if (!areSiblings(row, sibling)) continue;
    for (const std::string& miss : nearMisses(sibling.match)) {
      if (isAbout(row, miss, siblings)) values.push_back(miss);
    }
  }
  std::vector<Trial> trials;
  const std::vector<std::size_t> gone(isTakenOut(row) ? 1 : 0);
  for (const std::string& value : values) trials.push_back({{value}, gone, {value}});
  return trials;
}

}  // namespace

Values Trial::carried() const {
  Values values;
  for (std::size_t i = 0; i < old.size(); ++i) {
    if (std::find(gone.begin(), gone.end(), i) == gone.end()) values.push_back(old[i]);
  }
  return values;
}

fake::Entry entry(const std::string& dn, std::vector<fake::Attribute> attributes) {
  const std::size_t equals = dn.find('=');
  fake::Entry made{
      dn,
      {{"OBJECTCLASS", {"TOP", "zor-slapdConfigEntry"}},
       {"CN", {dn.substr(equals + 1, dn.find(',') == std::string::npos ? dn.find(',') : dn.find(',') - equals - 1)}}}};
  for (fake::Attribute& attribute : attributes) made.attributes.push_back(std::move(attribute));
  return made;
}

Entries configuration(Entries entries) {
  const bool hasRoot = std::any_of(entries.begin(), entries.end(), [](const auto& one) { return one.dn == kRoot; });
  if (!hasRoot) entries.insert(entries.begin(), entry(kRoot, {}));
  return entries;
}

bool areSiblings(const Row& left, const Row& right) {
  return left.entry == right.entry && left.presence == right.presence && left.subject == right.subject &&
         left.attribute == right.attribute;
}

bool isAbout(const Row& row, const std::string& value, const std::vector<Row>& siblings) {
  const std::vector<std::string>& texts = row.match.texts;
  switch (row.match.kind) {
    case Kind::none:
      return false;
    case Kind::any:
    case Kind::theFirst:
    case Kind::aLaterOne:
      return true;
    case Kind::exactly:
      return value == texts.front();
    case Kind::inAnyCase:
      return pages::sameText(value, texts.front());
    case Kind::firstContaining:
    case Kind::laterContaining:
    case Kind::eachContaining:
      return containsOneOf(value, texts);
    case Kind::rest:
      return contains(value, texts.front());
    case Kind::literal:
      return std::find(texts.begin(), texts.end(), value) != texts.end();
    case Kind::other:
      return std::none_of(siblings.begin(), siblings.end(), [&](const Row& sibling) {
        return areSiblings(row, sibling) && sibling.match.kind != Kind::other && isAbout(sibling, value, siblings);
      });
  }
  throw std::logic_error("a condition that is not known");
}

std::vector<Trial> trialsOf(const Row& row, const std::vector<Row>& siblings) {
  const std::vector<std::string>& texts = row.match.texts;
  const bool takenOut = isTakenOut(row);
  const auto gone = [&](std::size_t i) { return takenOut ? std::vector<std::size_t>{i} : std::vector<std::size_t>(); };
  std::vector<Trial> trials;
  switch (row.match.kind) {
    case Kind::any:
    case Kind::theFirst:
      return {{{"value of the old server"}, gone(0), {"value of the old server"}}};
    case Kind::aLaterOne:
      return {{{"the first value", "a second value"}, {}, {"a second value"}}};
    case Kind::exactly:
      return {{{texts.front()}, gone(0), {texts.front()}}};
    case Kind::inAnyCase:
      for (const std::string& value : {texts.front(), otherCase(texts.front()), mixedCase(texts.front())}) {
        trials.push_back({{value}, gone(0), {value}});
      }
      return trials;
    case Kind::firstContaining:
      for (const std::string& text : texts) {
        for (const std::string& value : {text, around(text)})
          trials.push_back({{"unrelated", value}, gone(1), {value}});
      }
      return trials;
    case Kind::laterContaining:  // the first is taken out by the line about the first
      for (const std::string& first : texts) {
        for (const std::string& later : texts) {
          trials.push_back({{"1 " + first, "unrelated", "2 " + later}, {0}, {"2 " + later}});
        }
      }
      return trials;
    case Kind::eachContaining: {
      Trial all{{"unrelated"}, {}, {}};
      for (const std::string& text : texts) {
        for (const std::string& value : {text, "/etc/" + text, around(text)}) {
          if (takenOut) all.gone.push_back(all.old.size());
          all.old.push_back(value);
          all.concerned.push_back(value);
        }
      }
      return {all};
    }
    case Kind::rest:
      for (const std::string rest : {"10", "10 x", ""}) {
        trials.push_back({{"unrelated", around(texts.at(0)) + " " + texts.at(1) + rest}, {1}, {rest}});
      }
      return trials;
    case Kind::other:
      return trialsOfOther(row, siblings);
    case Kind::none:
    case Kind::literal:
      break;
  }
  throw std::logic_error(row.place + ": a line about no value that the old configuration could have");
}

std::vector<fake::Attribute> identity(pages::Circumstance circumstance) {
  using pages::Circumstance;
  switch (circumstance) {
    case Circumstance::replica:
      return {{"zor-slapdMasterDN", {"cn=master"}}, {"zor-slapdMasterPW", {"sealed master"}}};
    case Circumstance::peer:
      return {{"zor-slapdPeerDN", {"cn=peer"}}, {"zor-slapdPeerPW", {"sealed peer"}}};
    case Circumstance::replicaWithoutPassword:
      return {{"zor-slapdMasterDN", {"cn=master"}}};
    case Circumstance::peerWithoutPassword:
      return {{"zor-slapdPeerDN", {"cn=peer"}}};
    default:
      return {};
  }
}

}  // namespace scenario
