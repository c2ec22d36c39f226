// The fake's content and the embedded store, side by side over random scripts of operations: what the tests of the
// library take for granted is what the library meets in earnest.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cctype>

#include "Content.h"
#include "SimpleDn.h"
#include "StoreAnswers.h"
#include "StoreMaker.h"

namespace {

using Lines = std::vector<std::string>;

const Lines kDns = {"CN=CONFIGURATION",
                    "cn=SSL, cn=Configuration",
                    "CN=SSL,CN=CONFIGURATION",
                    "cn=a,cn=ssl,cn=configuration",
                    "CN=Front End , CN=Configuration",
                    "CN=B,CN=CONFIGURATION",
                    "O=ELSEWHERE"};
const Lines kNames = {"objectclass",   "OBJECTCLASS",     "cn",         "zor-slapdPort",
                      "ZOR-slapdPORT", "zor-slapdSuffix", "description"};
const Lines kValues = {"389", "o=sample", "a b c", "x: y", "cn=x,o=y", "database  lib.so  init"};

Lines sorted(Lines lines) {
  std::sort(lines.begin(), lines.end());
  return lines;
}

Lines normalForms(const Lines& dns) {
  Lines forms;
  for (const std::string& dn : dns) {
    forms.push_back(fake::simpleDn(dn));
  }
  return sorted(forms);
}

Lines foldedNames(Lines names) {
  for (std::string& name : names) {
    std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::tolower(c); });
  }
  return sorted(names);
}

// Null in one of a few cases.
const char* orNull(const std::string& value) { return *rc::gen::inRange(0, 12) == 0 ? nullptr : value.c_str(); }

std::vector<fake::Entry> someEntries() {
  std::vector<fake::Entry> entries;
  Lines seen;
  for (const std::string& dn : kDns) {
    if (*rc::gen::inRange(0, 3) == 0 || std::ranges::count(seen, fake::simpleDn(dn)) != 0) {
      continue;
    }
    seen.push_back(fake::simpleDn(dn));
    fake::Entry entry{dn, {{"objectclass", {"top"}}}};
    if (*rc::gen::inRange(0, 2) == 0) {
      entry.attributes.push_back({"zor-slapdPort", {"389"}});
    }
    if (*rc::gen::inRange(0, 2) == 0) {
      entry.attributes.push_back({"zor-slapdSuffix", {"o=sample", "cn=x,o=y", "a b c"}});
    }
    entries.push_back(entry);
  }
  return entries;
}

class Both {
 public:
  explicit Both(const std::vector<fake::Entry>& entries) : m_made(makeStore(entries)), m_store(m_made->utils()) {
    for (const fake::Entry& entry : entries) {
      m_content.put(entry.dn, entry.attributes);
    }
    const auto listed = answers::subordinates(m_store, kDns[0].c_str(), 2);
    const bool hasBase = m_content.find(kDns[0]) != nullptr;
    m_content.listBase(!hasBase || std::ranges::count(normalForms(listed.values), kDns[0]) != 0);
  }

  // One random operation on both.
  void step() {
    const std::string dn = *rc::gen::elementOf(kDns);
    const std::string name = *rc::gen::elementOf(kNames);
    const std::string value = *rc::gen::elementOf(kValues);
    const std::string other = *rc::gen::elementOf(kValues);
    switch (*rc::gen::inRange(0, 5)) {
      case 0: {
        const char* given = orNull(value);
        agree(m_store.addValue(dn.c_str(), name.c_str(), given), m_content.addValue(dn.c_str(), name.c_str(), given));
        break;
      }
      case 1: {
        const char* given = orNull(value);
        agree(m_store.setValue(dn.c_str(), name.c_str(), given), m_content.setValue(dn.c_str(), name.c_str(), given));
        break;
      }
      case 2: {
        Lines list;
        if (*rc::gen::inRange(0, 5) != 0) {
          list.push_back(value);
        }
        if (*rc::gen::inRange(0, 5) == 0 && other != value) {
          list.push_back(other);
        }
        std::vector<char*> slots;
        for (std::string& text : list) {
          slots.push_back(text.data());
        }
        slots.push_back(nullptr);
        agree(m_store.delValue(dn.c_str(), name.c_str(), slots.data()),
              m_content.delValue(dn.c_str(), name.c_str(), slots.data()));
        break;
      }
      case 3: {
        const char* cn = orNull(value);
        const char* first = orNull(value);
        const char* second = orNull(other);
        agree(m_store.addEntry(dn.c_str(), cn, first, second), m_content.addEntry(dn.c_str(), cn, first, second));
        break;
      }
      default:
        agree(m_store.removeEntry(dn.c_str()), m_content.removeEntry(dn.c_str()));
        break;
    }
  }

  // Everything that can be read.
  void compare() {
    for (int scope = 0; scope <= 2; ++scope) {
      Lines expected;
      RC_ASSERT(m_content.subordinates(kDns[0].c_str(), scope, expected) == 0);
      const auto listed = answers::subordinates(m_store, kDns[0].c_str(), scope);
      if (listed.rc == 0) {
        RC_ASSERT(listed.count == static_cast<int>(listed.values.size()));
      } else {
        RC_ASSERT(m_content.find(kDns[0]) == nullptr);  // a store may refuse a base that is not there
      }
      RC_ASSERT(normalForms(listed.values) == (listed.rc == 0 ? normalForms(expected) : Lines()));
    }
    for (const std::string& dn : kDns) {
      Lines names;
      const int rc = m_content.attributeNames(dn.c_str(), names);
      const auto walked = answers::attributeNames(m_store, dn.c_str());
      RC_ASSERT(walked.has_value() == (rc == 0));
      RC_ASSERT(foldedNames(walked.value_or(Lines())) == foldedNames(names));
      for (const std::string& name : kNames) {
        compareAttribute(dn.c_str(), name.c_str());
      }
    }
  }

 private:
  static void agree(int embedded, int expected) { RC_ASSERT((embedded == 0) == (expected == 0)); }

  void compareAttribute(const char* dn, const char* name) {
    const std::string* first = nullptr;
    const int firstRc = m_content.firstValue(dn, name, first);
    const auto value = answers::value(m_store, dn, name);
    agree(value.rc, firstRc);
    RC_ASSERT(value.value == (first == nullptr ? std::nullopt : std::make_optional(*first)));

    const Lines* all = nullptr;
    const int allRc = m_content.allValues(dn, name, all);
    const auto values = answers::values(m_store, dn, name);
    agree(values.rc, allRc);
    RC_ASSERT((values.rc == 16) == (allRc == 16));
    RC_ASSERT(values.values == (all == nullptr ? Lines() : *all));
    RC_ASSERT(values.count == static_cast<int>(values.values.size()));
  }

  std::unique_ptr<MadeStore> m_made;
  OVOConfigUtils::CfgUtils& m_store;
  fake::Content m_content;
};

RC_GTEST_PROP(StoreAgreement, TheEmbeddedStoreAnswersAsTheFakeDoes, ()) {
  Both both(someEntries());
  both.compare();
  const int steps = *rc::gen::inRange(0, 25);
  for (int n = 0; n < steps; ++n) {
    both.step();
  }
  both.compare();
}

RC_GTEST_PROP(StoreAgreement, NormalFormsOfPlainDnsAreTheSame, ()) {
  const std::string dn = *rc::gen::elementOf(kDns);
  RC_ASSERT(answers::normalForm(dn.c_str()) == fake::simpleDn(dn));
}

}  // namespace
