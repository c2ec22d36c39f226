#include "EditScript.h"

#include "LowerCase.h"

namespace fuzz {
namespace {

using cfgstore::test::Content;

constexpr Edit kEdits[] = {Edit::addValue, Edit::addValue, Edit::delValue,    Edit::delValue,
                           Edit::setValue, Edit::addEntry, Edit::removeEntry, Edit::list};

const std::string kDns[] = {"CN=CONFIGURATION", "cn=a , cn=Configuration",   "", "cn", "cn=\\zz",
                            "OU=X;CN=\"B,C\"",  "2.5.4.3=A,CN=CONFIGURATION"};

// The last one is longer than a file may have it.
const std::string kNames[] = {
    "objectClass", "cn",         "port",    "PLUGIN", "a;lang-de", "1.2.3", "zor_a", "dn",
    "control",     "ChangeType", "version", "",       "no name",   "9a",    "a;",    std::string(65536, 'x')};

const std::string kValues[] = {"", "top", " blank", ":colon", "<less", "#hash", "two\nlines", "\xff\xfe", "J\xc3\xbc"};

// Most choices below this number are of what is there.
constexpr std::size_t kKnown = 192;

std::string spelled(Choices& choices, const std::string& normal) {
  switch (choices.below(4)) {
    case 0:
      return lowerCase(normal);
    case 1:
      return "  " + normal + " ";
    default:
      return normal;
  }
}

std::string someDn(Choices& choices, const Content& content) {
  const std::size_t which = choices.byte();
  if (which < kKnown && !content.empty()) {
    return spelled(choices, std::next(content.begin(), static_cast<std::ptrdiff_t>(which % content.size()))->first);
  }
  return which % 2 == 0 ? choices.of(kDns) : "cn=" + choices.text();
}

// A DN for a new entry: below one that is there, beside it, or anywhere.
std::string newDn(Choices& choices, const Content& content) {
  std::string relative = someDn(choices, content);
  switch (choices.below(4)) {
    case 0:
      return relative;
    case 1:
      return "CN=" + choices.text() + (relative.empty() ? "" : ", ") + relative;
    default:
      return "cn=n" + std::to_string(choices.below(8)) + (relative.empty() ? "" : ",") + relative;
  }
}

std::string someName(Choices& choices, const Content::mapped_type* attributes) {
  const std::size_t which = choices.byte();
  if (which < kKnown && attributes != nullptr && !attributes->empty()) {
    const std::string& name =
        std::next(attributes->begin(), static_cast<std::ptrdiff_t>(which % attributes->size()))->first;
    return which % 3 == 0 ? name : name.substr(0, 1) + lowerCase(name).substr(1);
  }
  return which % 2 == 0 ? choices.of(kNames) : "a" + choices.text();
}

std::string someValue(Choices& choices, const std::vector<std::string>* values) {
  const std::size_t which = choices.byte();
  if (which < 128 && values != nullptr && !values->empty()) return (*values)[which % values->size()];
  return which % 2 == 0 ? choices.of(kValues) : choices.text();
}

}  // namespace

EditStep nextStep(Choices& choices, const Content& content) {
  EditStep step{choices.of(kEdits), {}, {}, {}};
  if (step.edit == Edit::addEntry) {
    step.dn = newDn(choices, content);
    for (int i = 0; i < 3; ++i) step.values.push_back(someValue(choices, nullptr));
    return step;
  }
  step.dn = someDn(choices, content);
  if (step.edit == Edit::list) step.scope = static_cast<int>(choices.below(3));
  if (step.edit == Edit::list || step.edit == Edit::removeEntry) return step;

  const auto entry = content.find(step.dn);  // only when it is spelled in normal form, which is often enough
  const auto* const attributes = entry == content.end() ? nullptr : &entry->second;
  step.attribute = someName(choices, attributes);
  const std::vector<std::string>* values = nullptr;
  if (attributes != nullptr && attributes->contains(step.attribute)) values = &attributes->at(step.attribute);
  const std::size_t count = step.edit == Edit::delValue ? choices.below(4) : 1;
  for (std::size_t i = 0; i < count; ++i) step.values.push_back(someValue(choices, values));
  return step;
}

}  // namespace fuzz
