// Over the embedded store, on files: writes are seen in its journal.

#include "EmbeddedMigration.h"

#include <stdlib.h>

#include <cerrno>
#include <fstream>
#include <stdexcept>
#include <system_error>

#include "ConfigFile.h"
#include "ConfigStore.h"
#include "StoreAnswers.h"
#include "TraceControl.h"

namespace migration {
namespace {

namespace fs = std::filesystem;

class Folder {
 public:
  Folder() {
    std::string name = (fs::temp_directory_path() / "cfgmig-pages-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::system_error(errno, std::generic_category(), name);
    m_path = name;
  }
  ~Folder() {
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  fs::path file(const char* name, const Entries& entries) const {
    fs::path path = m_path / name;
    std::ofstream out(path);
    for (const fake::Entry& entry : entries) {
      out << "dn: " << entry.dn << '\n';
      for (const fake::Attribute& attribute : entry.attributes) {
        for (const std::string& value : attribute.values) out << attribute.name << ": " << value << '\n';
      }
      out << '\n';
    }
    out.close();
    if (!out) throw std::runtime_error("cannot write " + path.string());
    return path;
  }

 private:
  fs::path m_path;
};

Configuration contentOf(ConfigFile& file) {
  Configuration configuration;
  OVOConfigUtils::CfgUtils& store = *file.getCfgUtils();
  Values dns = answers::subordinates(store, "CN=CONFIGURATION", 2).values;
  dns.emplace_back("CN=CONFIGURATION");
  for (const std::string& dn : dns) {
    for (const std::string& name : answers::attributeNames(store, dn.c_str()).value_or(Values())) {
      configuration.add(dn, name, answers::values(store, dn.c_str(), name.c_str()).values);
    }
  }
  return configuration;
}

const char* nameOf(cfgstore::Operation operation) {
  switch (operation) {
    case cfgstore::Operation::addValue:
      return "addValue";
    case cfgstore::Operation::delValue:
      return "delValue";
    case cfgstore::Operation::setValue:
      return "setValue";
    case cfgstore::Operation::addEntry:
      return "addEntry";
    case cfgstore::Operation::removeEntry:
      return "removeEntry";
  }
  throw std::logic_error("an operation without a name");
}

// Keeps the calls of both stores with the methods that were running.
class Recorder {
 public:
  Recorder(Outcome& outcome, ConfigFile& old, ConfigFile& fresh) : m_outcome(outcome), m_old(old), m_fresh(fresh) {
    observe("old", old);
    observe("new", fresh);
    ldtr::sendTo([this](const ldtr::Record& record) {
      if (record.kind == ldtr::RecordKind::entry) {
        m_methods.emplace_back(record.method);
        m_outcome.entered.emplace_back(record.method);
      } else if (record.kind == ldtr::RecordKind::exit) {
        m_methods.pop_back();
      } else if (record.identifier != 0) {  // a null list is reported without an identifier
        m_outcome.failed.push_back(m_methods.back());
      }
    });
    ldtr::setEvents(ldtr::kEverything);
  }
  ~Recorder() {
    ldtr::setEvents(0);
    ldtr::discard();
    cfgstore::ConfigStore::of(*m_old.getCfgUtils()).observe({});
    cfgstore::ConfigStore::of(*m_fresh.getCfgUtils()).observe({});
  }
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

 private:
  void observe(const char* name, ConfigFile& file) {
    cfgstore::ConfigStore::of(*file.getCfgUtils()).observe([this, name](const cfgstore::Write& write) {
      m_outcome.calls.push_back({name, nameOf(write.operation), std::string(write.dn), std::string(write.attribute),
                                 Values(write.values.begin(), write.values.end()), write.rc, m_methods});
    });
  }

  Outcome& m_outcome;
  ConfigFile& m_old;
  ConfigFile& m_fresh;
  std::vector<std::string> m_methods;
};

}  // namespace

Outcome migrateFiles(const std::string& version, const fs::path& oldFile, const fs::path& newFile) {
  ConfigFile old(oldFile.string(), nullptr);
  ConfigFile fresh(newFile.string(), nullptr);
  if (old.getDns() != 0 || fresh.getDns() != 0) throw std::runtime_error("getDns failed");
  Outcome outcome;
  outcome.oldBefore = contentOf(old);
  outcome.newBefore = contentOf(fresh);
  {
    const Recorder recorder(outcome, old, fresh);
    if (fresh.mergeConfigFiles(&old, version.c_str()) != 1) throw std::runtime_error("no merge");
  }
  outcome.oldLeft = contentOf(old);
  outcome.merged = contentOf(fresh);
  return outcome;
}

Outcome migrate(const std::string& version, const Entries& old, const Entries& fresh) {
  const Folder folder;
  return migrateFiles(version, folder.file("old.ldif", old), folder.file("new.ldif", fresh));
}

}  // namespace migration
