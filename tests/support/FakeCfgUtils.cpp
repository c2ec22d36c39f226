// The configuration store of the tests: the platform interface in front of the World's contents. Every call goes
// through `carryOut`, which logs it and lets the faults strike first.

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "CfgUtils.h"
#include "Outside.h"
#include "World.h"

using fake::CallSite;
using fake::Content;
using fake::Failure;
using fake::OutParameters;
using fake::World;

namespace OVOConfigUtils {

struct CfgUtils::Implementation {
  std::string name;
  Content* content;
};

}  // namespace OVOConfigUtils

namespace {

std::string_view view(const char* text) { return text == nullptr ? std::string_view("null") : text; }

void append(std::string& line, const char* text) { line += view(text); }
void append(std::string& line, int number) { line += std::to_string(number); }
void append(std::string& line, const std::string& text) { line += text; }
void append(std::string& line, char** list) {
  line += '[';
  for (char** value = list; *value != nullptr; ++value) {
    line += value == list ? "" : ", ";
    line += *value;
  }
  line += ']';
}

template <class... Arguments>
std::string callText(const CallSite& site, const Arguments&... arguments) {
  std::string line;
  if (!site.store.empty()) {
    line.append(site.store).append(".");
  }
  line.append(site.operation).append("(");
  bool first = true;
  ((line += first ? "" : ", ", append(line, arguments), first = false), ...);
  return line += ')';
}

// One operation: the faults have the first word, then `operation` is carried out and gives its code. `clear` empties
// the out-parameters; it is run after every failure that does not leave them untouched. `answer` says what the log
// shows for the code.
template <class Answer, class Operation, class Clear, class... Arguments>
int carryOutAnswering(Answer answer, const CallSite& site, Operation operation, Clear clear,
                      const Arguments&... arguments) {
  const fake::OutsideLibrary outside;
  World& world = World::current();
  const std::string line = world.wantsCalls() ? callText(site, arguments...) : std::string();
  int rc = 0;
  try {
    if (const auto failure = world.faults().strike(site)) {
      rc = failure->rc;
      if (failure->outParameters == OutParameters::cleared) {
        clear();
      }
    } else {
      rc = operation(world);
      if (rc != 0) {
        clear();
      }
    }
  } catch (...) {
    world.called(line + " throws");
    throw;
  }
  if (world.wantsCalls()) {
    world.called(line + " = " + answer(rc));
  }
  return rc;
}

// A store operation: the log shows the code.
template <class Operation, class Clear, class... Arguments>
int carryOut(const CallSite& site, Operation operation, Clear clear, const Arguments&... arguments) {
  return carryOutAnswering([](int rc) { return std::to_string(rc); }, site, operation, clear, arguments...);
}

constexpr auto kNothing = [] {};

}  // namespace

namespace OVOConfigUtils {

CfgUtils::CfgUtils(const char* path, aes_key_data* key) : m_implementation(nullptr) {
  const fake::OutsideLibrary outside;
  World& world = World::current();
  world.opened(path, key);
  carryOut(
      {path, "open"}, [](World&) { return 0; }, kNothing);
  m_implementation = new Implementation{path, &world.store(path)};
}

CfgUtils::~CfgUtils() {
  const fake::OutsideLibrary outside;
  if (World* world = World::currentOrNull(); world != nullptr && world->wantsCalls()) {
    world->called(m_implementation->name + ".close()");
  }
  delete m_implementation;
}

int CfgUtils::getSubordinates(const char* baseDn, int scope, char*** dns, int* count) {
  return carryOut(
      {m_implementation->name, "getSubordinates", view(baseDn)},
      [&](World& world) {
        std::vector<std::string> found;
        if (const int rc = m_implementation->content->subordinates(baseDn, scope, found); rc != 0) {
          return rc;
        }
        *dns = world.resources().newList(found, fake::Kind::listBlock);
        *count = static_cast<int>(found.size());
        return 0;
      },
      [&] { *dns = nullptr, *count = 0; }, baseDn, scope);
}

int CfgUtils::getParamValueInfo(const char* dn, const char* attribute, char** value) {
  return carryOut(
      {m_implementation->name, "getParamValueInfo", view(dn), view(attribute)},
      [&](World& world) {
        const std::string* found = nullptr;
        if (const int rc = m_implementation->content->firstValue(dn, attribute, found); rc != 0) {
          return rc;
        }
        *value = found == nullptr ? nullptr : world.resources().newString(*found);
        return 0;
      },
      [&] { *value = nullptr; }, dn, attribute);
}

int CfgUtils::getParamArrayValueInfo(const char* dn, const char* attribute, char*** values, int* count) {
  return carryOut(
      {m_implementation->name, "getParamArrayValueInfo", view(dn), view(attribute)},
      [&](World& world) {
        const std::vector<std::string>* found = nullptr;
        if (const int rc = m_implementation->content->allValues(dn, attribute, found); rc != 0) {
          return rc;
        }
        *values = world.resources().newList(*found, fake::Kind::valueBlock);
        *count = static_cast<int>(found->size());
        world.handsOut(attribute, *values);
        return 0;
      },
      [&] { *values = nullptr, *count = 0; }, dn, attribute);
}

int CfgUtils::addValue(const char* dn, const char* attribute, const char* value) {
  return carryOut(
      {m_implementation->name, "addValue", view(dn), view(attribute)},
      [&](World&) { return m_implementation->content->addValue(dn, attribute, value); }, kNothing, dn, attribute,
      value);
}

int CfgUtils::delValue(const char* dn, const char* attribute, char** values) {
  return carryOut(
      {m_implementation->name, "delValue", view(dn), view(attribute)},
      [&](World&) { return m_implementation->content->delValue(dn, attribute, values); }, kNothing, dn, attribute,
      values);
}

int CfgUtils::setValue(const char* dn, const char* attribute, const char* value) {
  return carryOut(
      {m_implementation->name, "setValue", view(dn), view(attribute)},
      [&](World&) { return m_implementation->content->setValue(dn, attribute, value); }, kNothing, dn, attribute,
      value);
}

int CfgUtils::addEntry(const char* dn, const char* cn, const char* objectClass, const char* secondObjectClass) {
  return carryOut(
      {m_implementation->name, "addEntry", view(dn)},
      [&](World&) { return m_implementation->content->addEntry(dn, cn, objectClass, secondObjectClass); }, kNothing, dn,
      cn, objectClass, secondObjectClass);
}

int CfgUtils::removeEntry(const char* dn) {
  return carryOut(
      {m_implementation->name, "removeEntry", view(dn)},
      [&](World&) { return m_implementation->content->removeEntry(dn); }, kNothing, dn);
}

int CfgUtils::getFirstEntry(const char* dn, _CFGMessage** entry) {
  return carryOut(
      {m_implementation->name, "getFirstEntry", view(dn)},
      [&](World& world) {
        if (dn == nullptr || m_implementation->content->find(dn) == nullptr) {
          return fake::kNoSuchEntry;
        }
        *entry = world.resources().newEntry(m_implementation->name, dn);
        return 0;
      },
      [&] { *entry = nullptr; }, dn);
}

int CfgUtils::getFirstAttribute(_CFGMessage* entry, char** attribute, _CFGMessage*** cursor) {
  const fake::OutsideLibrary outside;
  fake::Resources& resources = World::current().resources();
  const std::string* dn = resources.dnOf(entry, m_implementation->name);
  return carryOut(
      {m_implementation->name, "getFirstAttribute", dn == nullptr ? std::string_view() : *dn},
      [&](World&) {
        std::vector<std::string> names;
        if (dn == nullptr || m_implementation->content->attributeNames(dn->c_str(), names) != 0) {
          return fake::kBadHandle;
        }
        *cursor = resources.newCursor(entry, std::move(names));
        fake::Cursor& walk = *resources.cursorOf(*cursor, entry);
        *attribute = walk.names.empty() ? nullptr : resources.newString(walk.names[walk.next++]);
        return 0;
      },
      [&] { *attribute = nullptr, *cursor = nullptr; }, dn == nullptr ? "null" : *dn);
}

int CfgUtils::getNextAttribute(_CFGMessage* entry, char** attribute, _CFGMessage** cursor) {
  const fake::OutsideLibrary outside;
  fake::Resources& resources = World::current().resources();
  const std::string* dn = resources.dnOf(entry, m_implementation->name);
  fake::Cursor* walk = resources.cursorOf(cursor, entry);
  return carryOut(
      {m_implementation->name, "getNextAttribute", dn == nullptr ? std::string_view() : *dn},
      [&](World&) {
        if (dn == nullptr || walk == nullptr) {
          return fake::kBadHandle;
        }
        *attribute = walk->next >= walk->names.size() ? nullptr : resources.newString(walk->names[walk->next++]);
        return 0;
      },
      [&] { *attribute = nullptr; }, dn == nullptr ? "null" : *dn);
}

}  // namespace OVOConfigUtils

char* formatDn(const char* dn) {
  char* form = nullptr;
  carryOutAnswering([&](int) { return std::string(view(form)); }, {"", "formatDn", view(dn)},
                    [&](World& world) {
                      const auto normal = dn == nullptr ? std::nullopt : world.normalForm(dn);
                      form = normal ? world.resources().newString(*normal) : nullptr;
                      return normal ? 0 : fake::kBadDn;
                    },
                    kNothing, dn);
  return form;
}

int compareDns(const char* left, const char* right) {
  int equal = 0;
  carryOutAnswering([&](int) { return std::to_string(equal); }, {"", "compareDns"},
                    [&](World& world) {
                      if (left != nullptr && right != nullptr) {
                        const auto leftForm = world.normalForm(left);
                        equal = leftForm && leftForm == world.normalForm(right) ? 1 : 0;
                      }
                      return 0;
                    },
                    kNothing, left, right);
  return equal;
}

int doesFileExist(const char* path) {
  int exists = 0;
  carryOutAnswering([&](int) { return std::to_string(exists); }, {"", "doesFileExist", view(path)},
                    [&](World& world) {
                      exists = world.files().contains(path) ? 1 : 0;
                      return 0;
                    },
                    kNothing, path);
  return exists;
}

int copyFile(const char* source, const char* destination, char* text, int reserved, int permissions) {
  int copied = 0;
  carryOutAnswering([&](int) { return std::to_string(copied); }, {"", "copyFile", view(source)},
                    [&](World& world) {
                      world.fileCopies().push_back({source, destination, text, reserved, permissions});
                      world.files().insert(destination);
                      copied = 1;
                      return 0;
                    },
                    kNothing, source, destination, static_cast<const char*>(text), reserved, permissions);
  return copied;
}

void cfg_msgfree(_CFGMessage* entry) {
  const fake::OutsideLibrary outside;
  World& world = World::current();
  if (world.wantsCalls()) {
    world.called("cfg_msgfree(" + world.resources().describe(entry) + ")");
  }
  world.resources().releaseEntry(entry);
}

void cfg_ber_free(_CFGMessage** cursor) {
  const fake::OutsideLibrary outside;
  World& world = World::current();
  if (world.wantsCalls()) {
    world.called("cfg_ber_free(" + world.resources().describe(cursor) + ")");
  }
  world.resources().releaseCursor(cursor);
}
