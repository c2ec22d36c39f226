#include "report/Redaction.h"

#include <span>
#include <unordered_map>

#include "Base64.h"
#include "PrintableText.h"
#include "Secrets.h"
#include "ShownText.h"

namespace tool {
namespace {

std::size_t indexOf(Content content) { return static_cast<std::size_t>(content); }

ShownValue inForm(std::string_view value) {
  if (cfgstore::isUtf8(value)) return {ShownValue::Form::text, std::string(value)};
  ShownValue shown{ShownValue::Form::base64, {}};
  cfgstore::appendBase64(shown.text, value);
  return shown;
}

using Marks = std::array<std::vector<bool>, kContents>;

// An entry may be unfolded at the moment.
std::span<const cfgstore::SnapshotValue> lastingValues(const cfgstore::Snapshot& snapshot) {
  return snapshot.values().first(snapshot.lastingValues());
}

void markAll(const Ledger& ledger, SecretNames& names, Marks& marks) {
  for (std::size_t content = 0; content < kContents; ++content) {
    const cfgstore::Snapshot& snapshot = snapshotOf(ledger, static_cast<Content>(content));
    std::vector<bool>& secret = marks[content];
    secret.reserve(snapshot.lastingValues());
    for (const cfgstore::SnapshotValue& value : lastingValues(snapshot)) {
      secret.push_back(names.isSecret(snapshot.attributeOf(value).name, value.value));
    }
  }
}

// A value is as secret as the one that it comes from, or that it stands in the place of, whatever their attributes are.
void markCompanions(const Ledger& ledger, Marks& marks) {
  std::vector<bool>& old = marks[indexOf(Content::old)];
  std::vector<bool>& before = marks[indexOf(Content::before)];
  std::vector<bool>& result = marks[indexOf(Content::result)];
  const auto alike = [](std::vector<bool>& left, ValueId leftId, std::vector<bool>& right, ValueId rightId) {
    if (leftId >= left.size() || rightId >= right.size()) return;
    const bool either = left[leftId] || right[rightId];
    left[leftId] = either;
    right[rightId] = either;
  };
  for (std::size_t i = 0; i < ledger.old.lastingValues(); ++i) {
    alike(old, static_cast<ValueId>(i), result, ledger.oldValues[i].place);
  }
  for (std::size_t i = 0; i < ledger.result.lastingValues(); ++i) {
    const ResultValueRow& row = ledger.resultValues[i];
    if (row.origin != ValueOrigin::fromNew) alike(old, row.from, result, static_cast<ValueId>(i));
  }
  for (const ReplacedRow& row : ledger.replaced) alike(before, row.before, result, row.by);
}

ShownValue hidden() { return {ShownValue::Form::redacted, std::string(kRedacted)}; }

}  // namespace

std::string lineOf(const ShownValue& value) {
  switch (value.form) {
    case ShownValue::Form::text:
      return ldtr::printable(value.text);
    case ShownValue::Form::base64:
      return "base64:" + value.text;
    case ShownValue::Form::redacted:
      break;
  }
  return value.text;
}

Redaction::Secrets Redaction::look(const Ledger& ledger) {
  Secrets secrets;
  SecretNames names;
  markAll(ledger, names, secrets.marks);
  markCompanions(ledger, secrets.marks);
  for (std::size_t content = 0; content < kContents; ++content) {
    const auto values = lastingValues(snapshotOf(ledger, static_cast<Content>(content)));
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (secrets.marks[content][i]) secrets.known.add(values[i].value);
    }
  }
  // What is set aside is the same in all three.
  ledger.old.visitSetAside([&](std::string_view name, std::string_view value) {
    if (names.isSecret(name, value)) secrets.known.add(value);
  });
  secrets.known.finish();
  for (std::size_t content = 0; content < kContents; ++content) {
    const auto values = lastingValues(snapshotOf(ledger, static_cast<Content>(content)));
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (!secrets.marks[content][i] && secrets.known.isRepeatedIn(values[i].value)) secrets.marks[content][i] = true;
    }
  }
  return secrets;
}

bool Redaction::isSecret(Content content, ValueId value) const {
  const std::vector<bool>& marks = secrets().marks[indexOf(content)];
  if (value < marks.size()) return marks[value];
  const cfgstore::Snapshot& snapshot = snapshotOf(*m_ledger, content);  // of an entry that is unfolded
  const cfgstore::SnapshotValue& unfolded = snapshot.values()[value];
  return isSecret(snapshot.attributeOf(unfolded).name, unfolded.value);
}

bool Redaction::isSecret(std::string_view attribute, std::string_view value) const {
  return tool::isSecret(attribute, value) || secrets().known.isRepeatedIn(value);
}

ShownValue Redaction::shown(Content content, ValueId value) const {
  if (!m_showSecrets && isSecret(content, value)) return hidden();
  return inForm(snapshotOf(*m_ledger, content).values()[value].value);
}

ShownValue Redaction::shown(std::string_view attribute, std::string_view value) const {
  if (!m_showSecrets && isSecret(attribute, value)) return hidden();
  return inForm(value);
}

std::string Redaction::words(std::string_view text) const {
  return m_showSecrets ? std::string(text) : secrets().known.replacedIn(text, kRedacted);
}

}  // namespace tool
