#include "migration/PlanContent.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>

#include "Base64.h"
#include "Failure.h"
#include "Line.h"
#include "NormalDn.h"
#include "PrintableText.h"
#include "report/Redaction.h"

namespace tool {
namespace {

using Json = nlohmann::json;

constexpr const char* kEvents = "events";
constexpr const char* kReasons = "reasons";

std::optional<Content> contentOf(const std::string& section) {
  for (const Content content : {Content::old, Content::before, Content::result}) {
    if (section == nameOf(content)) return content;
  }
  return std::nullopt;
}

// A text, which is in base64 when it is not UTF-8.
std::string textOf(const Json& json) {
  if (!json.is_object()) return json.get<std::string>();
  std::string decoded = json.at("base64").get<std::string>();
  cfgstore::decodeBase64InPlace(decoded, 0);
  return decoded;
}

// Sees each entry and each event of a report as it is read, and forgets it.
struct Visitor {
  std::function<void(Content content, std::size_t number, const Json& entry)> entry;
  std::function<void(const Json& event)> event;
};

// Returns the reasons.
std::vector<Reason> walk(const std::string& path, const Visitor& visitor) {
  std::ifstream in(path, std::ios::binary);
  std::string section;
  std::size_t number = 0;
  const auto filter = [&](int depth, Json::parse_event_t event, const Json& parsed) {
    if (depth == 1 && event == Json::parse_event_t::key) {
      section = parsed.get<std::string>();
      number = 0;
      return section == kReasons || section == kEvents || contentOf(section).has_value();
    }
    if (depth != 2 || event != Json::parse_event_t::object_end || section == kReasons) return true;
    if (const auto content = contentOf(section)) {
      if (visitor.entry) visitor.entry(*content, number, parsed);
    } else if (section == kEvents && visitor.event) {
      visitor.event(parsed);
    }
    ++number;
    return false;
  };
  try {
    const Json document = Json::parse(in, filter);
    std::vector<Reason> reasons;
    for (const Json& reason : document.at(kReasons)) {
      const Json& method = reason.at("method");
      reasons.push_back({method.is_null() ? "" : method.get<std::string>(), reason.at("words").get<std::string>()});
    }
    return reasons;
  } catch (const Json::exception&) {
    throw Failure(ExitStatus::failed, ldtr::printable(path) + ": its account of the values is not what cfgmig writes");
  }
}

// What is told of a value but for its reason, whose number goes to `reason`.
ToldValue toldOf(Content content, const Json& entry, const Json& attribute, const Json& value, std::size_t& reason) {
  ToldValue told;
  told.in = content;
  told.number = value.at("number").get<ValueId>();
  told.dn = textOf(entry.at("dn"));
  told.attribute = textOf(attribute.at("name"));
  told.line = value.at("line").get<std::size_t>();
  told.isRedacted = value.contains("redacted");
  if (value.contains("text")) told.text = textOf(value.at("text"));
  if (value.contains("base64")) told.text = textOf(Json{{"base64", value.at("base64")}});
  const char* const other = content == Content::old ? "place" : content == Content::before ? "by" : "from";
  told.other = value.value(other, kNoValue);
  if (content == Content::before) {
    told.fate = value.contains("replaced") ? "replaced" : "kept";
  } else {
    told.fate = value.at(content == Content::old ? "fate" : "origin").get<std::string>();
  }
  reason = value.value("reason", std::size_t{0});
  return told;
}

template <class Visit>
void visitValues(const Json& entry, const Visit& visit) {
  for (const Json& attribute : entry.at("attributes")) {
    for (const Json& value : attribute.at("values")) visit(attribute, value);
  }
}

// The content that the values of `content` speak of.
Content otherOf(Content content, const std::string& fate) {
  if (content != Content::result) return Content::result;
  return fate == nameOf(ValueOrigin::fromNew) ? Content::before : Content::old;
}

bool isOfAttribute(const WhyQuery& query, const std::string& attribute) {
  return query.attribute.empty() || cfgstore::sameName(query.attribute, attribute);
}

// Which of the readings the report has an entry for; the first of them.
std::optional<WhyQuery> choose(const std::string& path, const std::vector<WhyQuery>& readings) {
  std::size_t best = readings.size();
  walk(path, {[&](Content, std::size_t, const Json& entry) {
                const std::string normal = textOf(entry.at("normal_dn"));
                for (std::size_t i = 0; i < best; ++i) {
                  if (readings[i].normalDn == normal) best = i;
                }
              },
              {}});
  return best < readings.size() ? std::optional(readings[best]) : std::nullopt;
}

// Collects one answer while the report is walked over.
class Collector {
 public:
  explicit Collector(const WhyQuery& query) { m_answer.query = query; }

  void entry(Content content, std::size_t number, const Json& entry) {
    if (textOf(entry.at("normal_dn")) != m_answer.query.normalDn) return;
    if (content == Content::old) noteEntry(number, entry);
    visitValues(entry, [&](const Json& attribute, const Json& value) {
      std::size_t reason = 0;
      ToldValue told = toldOf(content, entry, attribute, value, reason);
      if (!isOfAttribute(m_answer.query, told.attribute)) return;
      if (m_answer.query.value && told.isRedacted) ++m_answer.hidden;
      if (m_answer.query.value && (told.isRedacted || told.text != *m_answer.query.value)) return;
      if (told.other != kNoValue) m_wanted.insert({otherOf(content, told.fate), told.other});
      m_answer.values.push_back(std::move(told));
      m_reasonsOfValues.push_back(reason);
    });
  }

  void event(const Json& event) {
    ToldEvent told;
    told.dn = textOf(event.at("dn"));
    const bool isOfEntry =
        event.contains("old_entry") && m_oldEntries.contains(event.at("old_entry").get<std::size_t>());
    if (!isOfEntry && cfgstore::normalDn(told.dn) != m_answer.query.normalDn) return;
    if (event.contains("attribute")) told.attribute = textOf(event.at("attribute"));
    if (!told.attribute.empty() && !isOfAttribute(m_answer.query, told.attribute)) return;
    bool hasValue = false;
    for (const Json& value : event.at("values")) {
      if (value.contains("redacted")) {
        told.values.emplace_back(kRedacted);
        continue;
      }
      const std::string text = value.contains("text") ? textOf(value.at("text")) : textOf(value);
      hasValue = hasValue || text == m_answer.query.value;
      told.values.push_back(ldtr::printable(text));
    }
    if (m_answer.query.value && !hasValue) return;
    told.onOld = event.at("in") == "old";
    told.operation = event.at("operation").get<std::string>();
    told.changed = event.at("changed").get<bool>();
    told.code = event.at("code").get<int>();
    m_answer.events.push_back(std::move(told));
    m_reasonsOfEvents.push_back(event.at("reason").get<std::size_t>());
  }

  const std::set<std::pair<Content, ValueId>>& wanted() const { return m_wanted; }

  PlanAnswer take(const std::vector<Reason>& reasons) {
    const auto reasonOf = [&](std::size_t number) { return number < reasons.size() ? reasons[number] : Reason{}; };
    for (std::size_t i = 0; i < m_answer.entries.size(); ++i)
      m_answer.entries[i].reason = reasonOf(m_reasonsOfEntries[i]);
    for (std::size_t i = 0; i < m_answer.values.size(); ++i) m_answer.values[i].reason = reasonOf(m_reasonsOfValues[i]);
    for (std::size_t i = 0; i < m_answer.events.size(); ++i) m_answer.events[i].reason = reasonOf(m_reasonsOfEvents[i]);
    return std::move(m_answer);
  }

 private:
  void noteEntry(std::size_t number, const Json& entry) {
    m_oldEntries.insert(number);
    ToldEntry told{
        textOf(entry.at("dn")), entry.at("line").get<std::size_t>(), entry.at("fate").get<std::string>(), {}, {}};
    if (const Json& target = entry.at("target"); !target.is_null()) told.target = textOf(target);
    m_answer.entries.push_back(std::move(told));
    m_reasonsOfEntries.push_back(entry.at("reason").get<std::size_t>());
  }

  PlanAnswer m_answer;
  std::set<std::size_t> m_oldEntries;
  std::set<std::pair<Content, ValueId>> m_wanted;
  std::vector<std::size_t> m_reasonsOfEntries;
  std::vector<std::size_t> m_reasonsOfValues;
  std::vector<std::size_t> m_reasonsOfEvents;
};

}  // namespace

PlanAnswer answerFrom(const std::string& path, const std::vector<WhyQuery>& readings) {
  const std::optional<WhyQuery> query = choose(path, readings);
  if (!query) return {};
  Collector collector(*query);
  const std::vector<Reason> reasons = walk(
      path, {[&](Content content, std::size_t number, const Json& entry) { collector.entry(content, number, entry); },
             [&](const Json& event) { collector.event(event); }});
  PlanAnswer answer = collector.take(reasons);
  if (collector.wanted().empty()) return answer;
  walk(path, {[&](Content content, std::size_t, const Json& entry) {
                visitValues(entry, [&](const Json& attribute, const Json& value) {
                  const std::pair key{content, value.at("number").get<ValueId>()};
                  if (!collector.wanted().contains(key)) return;
                  std::size_t reason = 0;
                  answer.others[key] = toldOf(content, entry, attribute, value, reason);
                });
              },
              {}});
  return answer;
}

}  // namespace tool
