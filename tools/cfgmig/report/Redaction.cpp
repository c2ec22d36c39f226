#include "report/Redaction.h"

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

Redaction::Redaction(const Ledger& ledger, bool showSecrets) : m_ledger(&ledger), m_showSecrets(showSecrets) {
  markAll();
  markCompanions();
  for (std::size_t content = 0; content < kContents; ++content) {
    const auto values = snapshotOf(ledger, static_cast<Content>(content)).values();
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (m_secret[content][i]) m_known.add(values[i].value);
    }
  }
  m_known.finish();
  for (std::size_t content = 0; content < kContents; ++content) {
    const auto values = snapshotOf(ledger, static_cast<Content>(content)).values();
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (!m_secret[content][i] && m_known.isRepeatedIn(values[i].value)) m_secret[content][i] = true;
    }
  }
}

void Redaction::markAll() {
  std::unordered_map<std::string_view, NameSays> names;  // few names, many values
  const auto says = [&](std::string_view name) {
    const auto [place, isNew] = names.try_emplace(name, NameSays::nothing);
    if (isNew) place->second = nameSays(name);
    return place->second;
  };
  for (std::size_t content = 0; content < kContents; ++content) {
    const cfgstore::Snapshot& snapshot = snapshotOf(*m_ledger, static_cast<Content>(content));
    std::vector<bool>& secret = m_secret[content];
    secret.reserve(snapshot.values().size());
    for (const cfgstore::SnapshotValue& value : snapshot.values()) {
      const NameSays name = says(snapshot.attributeOf(value).name);
      secret.push_back(name == NameSays::secret || (name == NameSays::nothing && looksSecret(value.value)));
    }
  }
}

// A value is as secret as the one that it comes from, or that it stands in the place of, whatever their attributes are.
void Redaction::markCompanions() {
  std::vector<bool>& old = m_secret[indexOf(Content::old)];
  std::vector<bool>& before = m_secret[indexOf(Content::before)];
  std::vector<bool>& result = m_secret[indexOf(Content::result)];
  const auto alike = [](std::vector<bool>& left, ValueId leftId, std::vector<bool>& right, ValueId rightId) {
    if (leftId >= left.size() || rightId >= right.size()) return;
    const bool either = left[leftId] || right[rightId];
    left[leftId] = either;
    right[rightId] = either;
  };
  for (std::size_t i = 0; i < m_ledger->oldValues.size(); ++i) {
    alike(old, static_cast<ValueId>(i), result, m_ledger->oldValues[i].place);
  }
  for (std::size_t i = 0; i < m_ledger->resultValues.size(); ++i) {
    const ResultValueRow& row = m_ledger->resultValues[i];
    if (row.origin != ValueOrigin::fromNew) alike(old, row.from, result, static_cast<ValueId>(i));
  }
  for (const ReplacedRow& row : m_ledger->replaced) alike(before, row.before, result, row.by);
}

bool Redaction::isSecret(Content content, ValueId value) const { return m_secret[indexOf(content)][value]; }

bool Redaction::isSecret(std::string_view attribute, std::string_view value) const {
  return tool::isSecret(attribute, value) || m_known.isRepeatedIn(value);
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
  return m_showSecrets ? std::string(text) : m_known.replacedIn(text, kRedacted);
}

}  // namespace tool
