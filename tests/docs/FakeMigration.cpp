// Over the fake store: every call is seen, reads and comparisons of DNs included.

#include "FakeMigration.h"

#include <algorithm>
#include <stdexcept>

#include "ConfigFile.h"
#include "SimpleDn.h"
#include "TraceControl.h"
#include "World.h"

namespace migration {
namespace {

bool isDn(const std::string& part) { return part.find('=') != std::string::npos; }

// The line of the fake's log, "old.delValue(CN=A, CN=B, zor-slapdPort, [389]) = 0", in pieces. A part of a DN is told
// from an attribute's name by its equals sign.
Call callFrom(const std::string& line, const std::vector<std::string>& methods) {
  Call call;
  call.methods = methods;
  const std::size_t dot = line.find('.');
  const std::size_t open = line.find('(');
  const std::size_t close = line.rfind(") = ");
  if (dot == std::string::npos || dot > open || close == std::string::npos) throw std::runtime_error(line);
  call.store = line.substr(0, dot);
  call.operation = line.substr(dot + 1, open - dot - 1);
  call.rc = std::stoi(line.substr(close + 4));
  std::vector<std::string> parts;
  const std::string arguments = line.substr(open + 1, close - open - 1);
  for (std::size_t at = 0; at <= arguments.size();) {
    const std::size_t end = std::min(arguments.find(", ", at), arguments.size());
    parts.push_back(arguments.substr(at, end - at));
    at = end + 2;
  }
  std::size_t next = 0;
  for (; next < parts.size() && isDn(parts[next]); ++next) call.dn += (next == 0 ? "" : ", ") + parts[next];
  const bool namesAttribute = call.operation.find("Value") != std::string::npos;
  if (namesAttribute && next < parts.size()) call.attribute = parts[next++];
  for (std::size_t i = next; i < parts.size(); ++i) call.values.push_back(parts[i]);
  if (call.operation == "delValue") {
    // One value or none, in brackets, which may itself hold what separates the arguments.
    const std::string value = arguments.substr(arguments.find('[') + 1);
    call.values = value == "]" ? Values() : Values{value.substr(0, value.size() - 1)};
  } else if (namesAttribute && !call.values.empty()) {
    std::string value = call.values.front();
    for (std::size_t i = 1; i < call.values.size(); ++i) value += ", " + call.values[i];
    call.values = value == "null" ? Values() : Values{value};
  }
  return call;
}

void put(fake::Content& content, const Entries& entries) {
  for (const fake::Entry& entry : entries) content.put(entry.dn, entry.attributes);
}

Configuration contentOf(const fake::Content& content) {
  Configuration configuration;
  for (const fake::Entry& entry : content.entries()) {
    for (const fake::Attribute& attribute : entry.attributes) {
      configuration.add(entry.dn, attribute.name, attribute.values);
    }
  }
  return configuration;
}

}  // namespace

Outcome migrate(const std::string& version, const Entries& old, const Entries& fresh) {
  return migrateComparing(version, old, fresh, [](const std::string&, const std::string&) {});
}

Outcome migrateComparing(const std::string& version, const Entries& old, const Entries& fresh,
                         const Comparison& comparison) {
  fake::World world(fake::World::Memory::unseen);
  put(world.store("old"), old);
  put(world.store("new"), fresh);
  Outcome outcome;
  outcome.showsReads = true;
  outcome.oldBefore = contentOf(world.store("old"));
  outcome.newBefore = contentOf(world.store("new"));
  {
    ConfigFile oldConfig("old", nullptr);
    ConfigFile newConfig("new", nullptr);
    if (oldConfig.getDns() != 0 || newConfig.getDns() != 0) throw std::runtime_error("getDns failed");

    std::vector<std::string> methods;
    world.onRecord([&](const fake::TraceRecord& record) {
      if (record.kind == fake::TraceRecord::Kind::entry) {
        const char* const name = ldtr::methodName(record.identifier);
        if (name == nullptr) throw std::runtime_error("a method without a name");
        methods.emplace_back(name);
        outcome.entered.emplace_back(name);
      } else if (record.kind == fake::TraceRecord::Kind::exit) {
        methods.pop_back();
      } else if (record.kind == fake::TraceRecord::Kind::debug) {
        outcome.failed.push_back(methods.back());
      }
    });
    world.onCall([&](const std::string& line) {
      if (line.starts_with("compareDns(")) {
        comparison(methods.back(), line);
        // The first of the two comes from an inventory, so it has no blanks behind its commas.
        const std::size_t open = line.find('(');
        const std::string dn = line.substr(open + 1, line.find(", ") - open - 1);
        outcome.comparisons.push_back({"", "compareDns", dn, "", {}, 0, methods});
        return;
      }
      if (line.find('.') < line.find('(')) outcome.calls.push_back(callFrom(line, methods));
    });
    if (newConfig.mergeConfigFiles(&oldConfig, version.c_str()) != 1) throw std::runtime_error("no merge");
    world.onRecord({});
    world.onCall({});
  }
  outcome.oldLeft = contentOf(world.store("old"));
  outcome.merged = contentOf(world.store("new"));
  return outcome;
}

}  // namespace migration
