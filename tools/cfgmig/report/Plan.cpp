#include "report/Plan.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>
#include <vector>

#include "Base64.h"
#include "Failure.h"
#include "PrintableText.h"
#include "SourceVersions.h"
#include "report/Sha256.h"

namespace tool {
namespace {

using Json = nlohmann::json;

// What of a report is a plan; the account of the values is read and forgotten.
constexpr std::string_view kMembers[] = {"format",         "format_version", "tool_version", "time",
                                         "source_version", "inputs",         "options",      "outcome"};

// What is wrong with a plan; a phrase to follow the file's name.
class PlanError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Sees each part of the document as it is read: decides what is kept, and that no name stands twice in an object.
class Filter {
 public:
  bool operator()(int depth, Json::parse_event_t event, const Json& parsed) {
    switch (event) {
      case Json::parse_event_t::object_start:
        if (depth == 0 || m_isKept) m_names.emplace_back();
        return true;
      case Json::parse_event_t::object_end:
        if (depth == 0 || m_isKept) m_names.pop_back();
        return true;
      case Json::parse_event_t::key:
        return key(depth, parsed.get_ref<const std::string&>());
      case Json::parse_event_t::array_start:
      case Json::parse_event_t::array_end:
      case Json::parse_event_t::value:
        break;
    }
    return true;
  }

 private:
  bool key(int depth, const std::string& name) {
    if (depth == 1) m_isKept = std::find(std::begin(kMembers), std::end(kMembers), name) != std::end(kMembers);
    const bool isLookedAt = depth == 1 || m_isKept;
    if (isLookedAt && !m_names.back().insert(name).second) {
      throw PlanError("it names \"" + ldtr::printable(name) + "\" twice in one place");
    }
    return m_isKept;
  }

  bool m_isKept = false;                       // the member of the document that is being read
  std::vector<std::set<std::string>> m_names;  // of the objects that are open, as far as they are looked at
};

Json readDocument(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw PlanError(std::string("it cannot be read: ") + std::strerror(errno));
  Filter filter;
  try {
    Json document = Json::parse(
        in, [&](int depth, Json::parse_event_t event, Json& parsed) { return filter(depth, event, parsed); });
    if (!document.is_object()) throw PlanError("it is no report of cfgmig");
    return document;
  } catch (const Json::parse_error& error) {
    throw PlanError("it is no JSON, or not all of it: see byte " + std::to_string(error.byte));
  } catch (const std::ios_base::failure&) {
    throw PlanError("it cannot be read");
  } catch (const Json::exception&) {
    throw PlanError("it holds a number that is out of range");
  }
}

// A part of the document, with its name for what is to be said of it.
class Part {
 public:
  Part(const Json& json, std::string name) : m_json(json), m_name(std::move(name)) {}

  Part member(const char* name) const {
    requireThat(m_json.is_object(), "an object");
    const auto found = m_json.find(name);
    const std::string fullName = m_name.empty() ? name : m_name + "." + name;
    if (found == m_json.end()) throw PlanError("it lacks \"" + fullName + "\"");
    return {*found, fullName};
  }
  std::vector<Part> elements() const {
    requireThat(m_json.is_array(), "a list");
    std::vector<Part> parts;
    for (const Json& element : m_json) parts.emplace_back(element, m_name + "[" + std::to_string(parts.size()) + "]");
    return parts;
  }

  bool isNull() const { return m_json.is_null(); }
  std::uint64_t number() const {
    requireThat(m_json.is_number_unsigned(), "a number of 0 or more");
    return m_json.get<std::uint64_t>();
  }
  std::string text() const {
    requireThat(m_json.is_string(), "a text");
    return withoutZero(m_json.get<std::string>());
  }
  // A text, which is in base64 when it is not UTF-8.
  std::string bytes() const {
    if (!m_json.is_object()) return text();
    const Part encoded = member("base64");
    std::string decoded = encoded.text();
    encoded.requireThat(m_json.size() == 1 && cfgstore::decodeBase64InPlace(decoded, 0), "base64");
    return withoutZero(std::move(decoded));
  }
  std::string path() const {
    std::string path = bytes();
    requireThat(path.starts_with('/'), "an absolute path");
    return path;
  }
  std::string version() const {
    std::string version = text();
    requireThat(isSourceVersion(version), "a version that is known: " + listOfSourceVersions());
    return version;
  }

  void requireThat(bool holds, const std::string& what) const {
    if (!holds) throw PlanError("its \"" + m_name + "\" is not " + what);
  }

 private:
  std::string withoutZero(std::string text) const {
    requireThat(text.find('\0') == std::string::npos, "without zero bytes");
    return text;
  }

  const Json& m_json;
  std::string m_name;
};

void requireFormat(const Part& document) {
  if (document.member("format").text() != kReportMark) throw PlanError("it is no report of cfgmig");
  const std::uint64_t version = document.member("format_version").number();
  if (version == kPlanFormatVersion) return;
  throw PlanError("it has format version " + std::to_string(version) + ", and this cfgmig reads version " +
                  std::to_string(kPlanFormatVersion));
}

// The one input with this role.
InputFile readInput(const Part& inputs, const std::string& role) {
  std::vector<InputFile> found;
  for (const Part& input : inputs.elements()) {
    if (input.member("role").text() != role) continue;
    InputFile file{role, input.member("path").path(), input.member("sha256").text(), input.member("size").number()};
    input.member("sha256").requireThat(isSha256(file.sha256), "64 lower-case hexadecimal digits");
    found.push_back(std::move(file));
  }
  inputs.requireThat(found.size() == 1, "a list with one input of the role \"" + role + "\"");
  return found.front();
}

MergeOptions readOptions(const Part& options) {
  MergeOptions read;
  if (const Part from = options.member("from"); !from.isNull()) read.from = from.version();
  read.target = options.member("target").path();
  if (const Part schemas = options.member("schemas"); !schemas.isNull()) {
    read.schemas = {schemas.member("search_directory").path(), schemas.member("target_directory").path()};
  }
  return read;
}

Outcome::Kind readOutcome(const Part& kind) {
  const std::string name = kind.text();
  for (const auto each : {Outcome::Kind::plan, Outcome::Kind::nothingToDo, Outcome::Kind::applied}) {
    if (name == nameOf(each)) return each;
  }
  kind.requireThat(false, "one that is known");
  return Outcome::Kind::plan;
}

Plan planOf(const Part& document) {
  requireFormat(document);
  Plan plan;
  plan.oldFile = readInput(document.member("inputs"), "old");
  plan.newFile = readInput(document.member("inputs"), "new");
  plan.options = readOptions(document.member("options"));
  plan.sourceVersion = document.member("source_version").version();
  plan.toolVersion = document.member("tool_version").text();
  plan.time = document.member("time").text();
  plan.outcome = readOutcome(document.member("outcome").member("kind"));
  return plan;
}

}  // namespace

Plan readPlan(const std::string& path) {
  try {
    const Json document = readDocument(path);
    return planOf(Part(document, ""));
  } catch (const PlanError& error) {
    throw Failure(ExitStatus::failed, ldtr::printable(path) + ": " + error.what());
  }
}

bool isStale(const InputFile& input, std::string_view content) {
  return content.size() != input.size || sha256(content) != input.sha256;
}

}  // namespace tool
