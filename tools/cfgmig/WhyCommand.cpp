// WhyCommand.cpp -- cfgmig why.

#include <fstream>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "Commands.h"
#include "Failure.h"
#include "JsonText.h"
#include "PrintableText.h"
#include "StoreCodes.h"
#include "migration/PlanContent.h"
#include "migration/WhyQuery.h"
#include "report/Plan.h"
#include "report/Redaction.h"
#include "report/Sha256.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

// The three files by the names that the plan gives them.
struct Names {
  std::string old;
  std::string before;
  std::string result;

  const std::string& of(Content content) const {
    return content == Content::old ? old : content == Content::before ? before : result;
  }
};

std::string shown(const ToldValue& value) {
  return value.isRedacted ? std::string(kRedacted) : ldtr::printable(value.text);
}

std::string because(const Reason& reason) {
  if (reason.method.empty()) return ldtr::printable(reason.words);
  return reason.method + (reason.words.empty() ? "" : ": " + ldtr::printable(reason.words));
}

std::string whereIs(const ToldValue& value, const Names& names) {
  return names.of(value.in) + ":" + std::to_string(value.line) + ": " + ldtr::printable(value.dn) + ", " +
         ldtr::printable(value.attribute);
}

const ToldValue* otherOf(const PlanAnswer& answer, const ToldValue& value) {
  const Content content = value.in != Content::result                  ? Content::result
                          : value.fate == nameOf(ValueOrigin::fromNew) ? Content::before
                                                                       : Content::old;
  const auto found = answer.others.find({content, value.other});
  return found == answer.others.end() ? nullptr : &found->second;
}

void writeValue(const PlanAnswer& answer, const ToldValue& value, const Names& names, std::ostream& out) {
  out << "  " << names.of(value.in) << ":" << value.line << ": " << ldtr::printable(value.attribute) << ": "
      << shown(value) << '\n';
  out << "      " << value.fate;
  if (const std::string reason = because(value.reason); !reason.empty()) out << " -- " << reason;
  out << '\n';
  const ToldValue* const other = otherOf(answer, value);
  if (other == nullptr) return;
  const char* const words = value.in == Content::old      ? "is now at   "
                            : value.in == Content::before ? "replaced by "
                                                          : "came from   ";
  out << "      " << words << whereIs(*other, names);
  if (other->text != value.text && !value.isRedacted) out << ": " << shown(*other);
  out << '\n';
}

void writeEvent(const ToldEvent& event, std::ostream& out) {
  out << "  " << (event.onOld ? "old" : "new") << ": " << event.operation << " " << ldtr::printable(event.dn);
  if (!event.attribute.empty()) out << ", " << ldtr::printable(event.attribute);
  for (std::size_t i = 0; i < event.values.size(); ++i) out << (i == 0 ? ": " : " | ") << event.values[i];
  out << '\n' << "      " << because(event.reason);
  if (event.code != 0) {
    out << " -- refused: " << storeCodeText(event.code);
  } else if (!event.changed) {
    out << " -- changed nothing";
  }
  out << '\n';
}

void writeText(const PlanAnswer& answer, const Names& names, std::ostream& out) {
  for (const ToldEntry& entry : answer.entries) {
    out << names.old << ":" << entry.line << ": " << ldtr::printable(entry.dn) << '\n';
    out << "  the entry: " << entry.fate << " -- " << because(entry.reason);
    if (!entry.target.empty()) out << "; it went to " << ldtr::printable(entry.target);
    out << '\n';
  }
  constexpr const char* kHeads[] = {"in the old configuration", "in the new configuration, before", "in the result"};
  for (const Content content : {Content::old, Content::before, Content::result}) {
    bool isFirst = true;
    for (const ToldValue& value : answer.values) {
      if (value.in != content) continue;
      if (isFirst) out << kHeads[static_cast<std::size_t>(content)] << ":\n";
      isFirst = false;
      writeValue(answer, value, names, out);
    }
  }
  if (!answer.events.empty()) out << "what was done, in order:\n";
  for (const ToldEvent& event : answer.events) writeEvent(event, out);
  if (answer.hidden > 0) {
    out << "not compared: " << answer.hidden << " secret" << (answer.hidden == 1 ? "" : "s")
        << " that the plan does not show\n";
  }
}

Json jsonOf(const Reason& reason) { return {{"method", reason.method}, {"words", reason.words}}; }

Json jsonOf(const ToldValue& value) {
  Json json = {{"in", nameOf(value.in)},
               {"dn", jsonText(value.dn)},
               {"attribute", jsonText(value.attribute)},
               {"line", value.line},
               {"value", value.isRedacted ? Json(nullptr) : jsonText(value.text)},
               {"redacted", value.isRedacted},
               {value.in == Content::result ? "origin" : "fate", value.fate}};
  return json;
}

Json jsonOf(const PlanAnswer& answer) {
  Json json = {{"format_version", 1}, {"entries", Json::array()}, {"values", Json::array()}, {"events", Json::array()}};
  for (const ToldEntry& entry : answer.entries) {
    json["entries"].push_back({{"dn", jsonText(entry.dn)},
                               {"line", entry.line},
                               {"fate", entry.fate},
                               {"reason", jsonOf(entry.reason)},
                               {"target", jsonText(entry.target)}});
  }
  for (const ToldValue& value : answer.values) {
    Json told = jsonOf(value);
    told["reason"] = jsonOf(value.reason);
    const ToldValue* const other = otherOf(answer, value);
    told["other"] = other == nullptr ? Json(nullptr) : jsonOf(*other);
    json["values"].push_back(std::move(told));
  }
  for (const ToldEvent& event : answer.events) {
    Json values = Json::array();
    for (const std::string& value : event.values) values.push_back(jsonText(value));
    json["events"].push_back({{"in", event.onOld ? "old" : "new"},
                              {"operation", event.operation},
                              {"dn", jsonText(event.dn)},
                              {"attribute", jsonText(event.attribute)},
                              {"values", values},
                              {"changed", event.changed},
                              {"code", event.code},
                              {"reason", jsonOf(event.reason)}});
  }
  json["hidden"] = answer.hidden;
  return json;
}

void warnIfStale(const InputFile& input, const std::string& time, Console& console) {
  if (sha256OfFile(input.path) == input.sha256) return;
  console.err << "cfgmig: " << ldtr::printable(input.path) << " has changed since the plan of " << ldtr::printable(time)
              << "; this is what the plan says\n";
}

}  // namespace

ExitStatus runWhy(const Arguments& arguments, Console& console) {
  const std::string path = arguments.value("PLAN");
  const std::string question = arguments.value("WHAT");
  const Plan plan = readPlan(path);
  const std::vector<WhyQuery> readings = readingsOf(question);
  if (readings.empty()) {
    throw Failure(ExitStatus::usage, ldtr::printable(question) + ": is no DN, nor DN:ATTRIBUTE or DN:ATTRIBUTE=VALUE");
  }
  const PlanAnswer answer = answerFrom(path, readings);
  warnIfStale(plan.oldFile, plan.time, console);
  // An apply in place has changed the new configuration itself.
  if (plan.outcome == Outcome::Kind::plan) warnIfStale(plan.newFile, plan.time, console);
  if (answer.isEmpty() && answer.hidden == 0) {
    throw Failure(ExitStatus::failed, ldtr::printable(question) + ": none of the configurations has it");
  }
  if (arguments.has("--json")) {
    console.out << jsonOf(answer).dump(1, ' ', true) << '\n';
  } else {
    const Names names{ldtr::printable(plan.oldFile.path), ldtr::printable(plan.newFile.path),
                      plan.outcome == Outcome::Kind::plan ? "result" : ldtr::printable(plan.options.target)};
    writeText(answer, names, console.out);
  }
  return ExitStatus::done;
}

}  // namespace tool
