// EditFuzzer.cpp -- an LDIF text, a zero byte, and a script of operations on it. After each operation the store has
// answered and holds what a simple model of the contract does, and its text differs from the one before only in the
// lines that the operation is about. At the end the text is read again and holds the same.

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "CfgUtils.h"
#include "Choices.h"
#include "ConfigStore.h"
#include "EditScript.h"
#include "EditedText.h"
#include "Fuzz.h"
#include "Line.h"
#include "LowerCase.h"
#include "NormalDn.h"
#include "ResultCode.h"
#include "Snapshot.h"
#include "SnapshotText.h"
#include "StoreCalls.h"
#include "StoreModel.h"

namespace {

using cfgstore::test::Content;
using cfgstore::test::StoreModel;
using fuzz::Edit;
using fuzz::EditedLine;
using fuzz::EditStep;
using fuzz::Strings;

constexpr std::size_t kMostSteps = 24;

Content contentOf(fuzz::Store& store) {
  const cfgstore::Snapshot snapshot(cfgstore::ConfigStore::of(store));
  Content content;
  for (const cfgstore::SnapshotEntry& entry : snapshot.entries()) {
    auto& attributes = content[std::string(entry.normal)];
    for (const cfgstore::SnapshotAttribute& attribute : snapshot.attributesOf(entry)) {
      auto& values = attributes[fuzz::lowerCase(attribute.name)];
      fuzz::require(values.empty(), "an attribute stands in one place", attribute.name);
      for (const cfgstore::SnapshotValue& value : snapshot.valuesOf(attribute)) {
        if (!value.repeated) values.emplace_back(value.value);
      }
    }
  }
  return content;
}

bool canBeNewName(const std::string& name) {
  const std::string lower = fuzz::lowerCase(name);
  return cfgstore::isAttributeName(name) && name.size() <= 65535 && lower != "dn" && lower != "control" &&
         lower != "changetype";
}

// What the contract has for a step beyond what the model knows: DNs and names that are none.
int modelled(StoreModel& model, const EditStep& step, const std::string& dn) {
  const std::string name = fuzz::lowerCase(step.attribute);
  const auto entry = model.content().find(dn);
  const bool isNewName = entry != model.content().end() && !entry->second.contains(name);
  switch (step.edit) {
    case Edit::addValue:
    case Edit::setValue:
      if (isNewName && !canBeNewName(step.attribute)) return cfgstore::kUndefinedAttributeType;
      return step.edit == Edit::addValue ? model.addValue(dn, name, step.values[0])
                                         : model.setValue(dn, name, step.values[0]);
    case Edit::delValue:
      return model.delValue(dn, name, step.values);
    case Edit::addEntry:
      if (dn.empty()) return cfgstore::kInvalidDnSyntax;
      return model.addEntry(dn, step.values[0], step.values[1], step.values[2]);
    case Edit::removeEntry:
      return model.removeEntry(dn);
    case Edit::list:
      break;
  }
  return cfgstore::kSuccess;
}

int performed(fuzz::Store& store, const EditStep& step) {
  const char* const dn = step.dn.c_str();
  switch (step.edit) {
    case Edit::addValue:
      return store.addValue(dn, step.attribute.c_str(), step.values[0].c_str());
    case Edit::setValue:
      return store.setValue(dn, step.attribute.c_str(), step.values[0].c_str());
    case Edit::delValue:
      return fuzz::delValue(store, step.dn, step.attribute, step.values);
    case Edit::addEntry:
      return store.addEntry(dn, step.values[0].c_str(), step.values[1].c_str(), step.values[2].c_str());
    case Edit::removeEntry:
      return store.removeEntry(dn);
    case Edit::list:
      break;
  }
  return cfgstore::kSuccess;
}

fuzz::AllowedEdit allowedFor(const EditStep& step, const std::string& dn, std::size_t blankLines) {
  const std::string name = fuzz::lowerCase(step.attribute);
  const auto isOfAttribute = [=](const EditedLine& line) { return line.entry == dn && line.name == name; };
  switch (step.edit) {
    case Edit::addValue:
      return {[](const EditedLine&) { return false; }, 1};
    case Edit::setValue:
      return {isOfAttribute, 1};
    case Edit::delValue:
      return {[=](const EditedLine& line) {
        return isOfAttribute(line) &&
               std::find(step.values.begin(), step.values.end(), line.value) != step.values.end();
      }};
    case Edit::addEntry:
      return {[](const EditedLine&) { return false; }, step.values[1] == step.values[2] ? 3U : 4U, 2 * blankLines};
    case Edit::removeEntry:
      return {[=](const EditedLine& line) { return line.isInEntry && line.entry == dn; }, 0, 0, true};
    case Edit::list:
      break;
  }
  return {[](const EditedLine&) { return false; }};
}

// The reading operations give what the model holds of one entry.
void checkEntry(fuzz::Store& store, const std::string& dn, const Content& content) {
  const auto entry = content.find(dn);
  Strings names;
  const int rc = fuzz::attributeNames(store, dn, names);
  fuzz::require(rc == (entry == content.end() ? cfgstore::kNoSuchObject : 0), "an entry is found or missing", dn);
  if (rc != 0) return;
  fuzz::require(names.size() == entry->second.size(), "a walk names each attribute once", dn);
  for (const std::string& name : names) {
    const auto attribute = entry->second.find(fuzz::lowerCase(name));
    fuzz::require(attribute != entry->second.end(), "a walk names what is there", name);
    Strings values;
    std::optional<std::string> first;
    fuzz::require(fuzz::allValues(store, dn, name, values) == 0, "values can be read", name);
    fuzz::require(values == attribute->second, "the values are those of the model", name);
    fuzz::require(fuzz::firstValue(store, dn, name, first) == 0 && first == values.front(), "the first value", name);
  }
  Strings none;
  fuzz::require(fuzz::allValues(store, dn, "a-b-s-e-n-t", none) == cfgstore::kNoSuchAttribute, "absence is 16");
}

void checkList(fuzz::Store& store, const EditStep& step, const std::optional<std::string>& base,
               const Content& content) {
  Strings dns;
  const int rc = fuzz::subordinates(store, step.dn, step.scope, dns);
  fuzz::require(rc == (base ? 0 : cfgstore::kInvalidDnSyntax), "a list fails for what is no DN and for nothing else");
  if (rc != 0) return;
  Strings expected;
  for (const auto& [dn, attributes] : content) {
    const bool isBase = dn == *base;
    const bool isChild = !isBase && cfgstore::parentOfNormalDn(dn) == *base;
    const bool isBelow = isBase || cfgstore::isWithinNormalDn(dn, *base);
    if (step.scope == 0 ? isBase : step.scope == 1 ? isChild : isBelow) expected.push_back(dn);
  }
  for (std::string& dn : dns) dn = fuzz::formatted(dn).value();
  std::sort(dns.begin(), dns.end());
  fuzz::require(dns == expected, "a list has the entries of its scope", *base);
}

// `text` is what the store holds before and after; `blankLines` how many empty lines there are at most between two
// entries of the file as it was read.
void runStep(fuzz::Store& store, StoreModel& model, const EditStep& step, std::size_t blankLines, std::string& text) {
  const auto dn = fuzz::formatted(step.dn);
  if (step.edit == Edit::list) {
    checkList(store, step, dn, model.content());
    return;
  }
  const Content before = model.content();
  const int expected = dn ? modelled(model, step, *dn) : cfgstore::kInvalidDnSyntax;
  const int rc = performed(store, step);
  fuzz::require(rc == expected, "an operation answers as the contract has it",
                "answered " + std::to_string(rc) + " instead of " + std::to_string(expected));
  std::string after = cfgstore::ConfigStore::of(store).text();
  if (model.content() == before) {
    fuzz::require(after == text, "an operation without an effect changes no byte", after);
  } else {
    fuzz::checkEdit(text, after, allowedFor(step, *dn, blankLines));
  }
  text = std::move(after);
  fuzz::require(contentOf(store) == model.content(), "the store holds what the model holds", text);
  if (dn) checkEntry(store, *dn, model.content());
}

// Null for what the reader refuses; its own target looks at that.
std::unique_ptr<fuzz::Store> opened(std::string_view text) {
  const fuzz::MemoryFile file(text);
  try {
    return std::make_unique<fuzz::Store>(file.path().c_str(), nullptr);
  } catch (const cfgstore::OpenError&) {
    return nullptr;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input = fuzz::viewOf(data, size);
  const std::size_t end = std::min(input.find('\0'), input.size());
  const std::string_view original = input.substr(0, end);
  const auto store = opened(original);
  if (!store) return 0;
  StoreModel model(contentOf(*store));
  fuzz::Choices script(input.substr(std::min(end + 1, input.size())));
  std::string text(original);
  const std::size_t blankLines = fuzz::mostBlankLines(original);
  for (std::size_t steps = 0; steps < kMostSteps && !script.empty(); ++steps) {
    runStep(*store, model, fuzz::nextStep(script, model.content()), blankLines, text);
  }

  cfgstore::ConfigStore& result = cfgstore::ConfigStore::of(*store);
  fuzz::require(result.changed() == (text != original), "a store knows whether it has changed");
  const auto again = opened(text);
  fuzz::require(again != nullptr, "what was edited can be read again", text);
  fuzz::require(
      fuzz::textOf(cfgstore::Snapshot(cfgstore::ConfigStore::of(*again))) == fuzz::textOf(cfgstore::Snapshot(result)),
      "what was edited is read again as it was", text);
  return 0;
}
