#include "SchemaCopies.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <new>
#include <ostream>
#include <utility>

#include "EntryReading.h"
#include "Failure.h"
#include "HeldSignals.h"
#include "MessageListener.h"
#include "PrintableText.h"
#include "SameFile.h"
#include "Snapshot.h"
#include "TracedMethod.h"

namespace tool {
namespace {

constexpr const char* kSchemaEntry = "CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION";
constexpr const char* kLegacySchemaEntry = "cn=ZOR Halvorn, CN=SCHEMAS,CN=CONFIGURATION";
constexpr const char* kIncludeSchema = "zor-slapdIncludeSchema";
constexpr int kNoMemory = 90;

// Frees a list that the library hands out, null for none.
struct FreeNames {
  void operator()(char** list) const {
    for (char** name = list; *name != nullptr; ++name) std::free(*name);
    std::free(list);
  }
};
using Names = std::unique_ptr<char*, FreeNames>;

std::string shown(const std::string& name) {
  return name.empty() ? "(a value without a file name)" : ldtr::printable(name);
}

std::string nameIn(const std::string& path) { return path.substr(path.rfind('/') + 1); }

// The values of the include lists of all entries.
std::vector<std::string> allIncludes(ConfigFile& configuration) {
  const cfgstore::Snapshot content(cfgstore::ConfigStore::of(*configuration.getCfgUtils()));
  std::vector<std::string> includes;
  for (std::uint32_t entry = 0; entry < content.entries().size(); ++entry) {
    const std::uint32_t list = content.findAttribute(entry, kIncludeSchema);
    if (list == cfgstore::Snapshot::kNone) continue;
    for (const auto& value : content.valuesOf(content.attributes()[list])) includes.emplace_back(value.value);
  }
  return includes;
}

// Without what does not matter at its end, so that the names below it look as a person writes them.
std::string trimmed(std::string directory) {
  while (directory.size() > 1 && (directory.ends_with('/') || directory.ends_with("/."))) directory.pop_back();
  return directory;
}

void refuseNoDirectory(const std::string& path, const char* option, bool linkAllowed) {
  struct stat status {};
  std::string why;
  if ((linkAllowed ? ::stat(path.c_str(), &status) : ::lstat(path.c_str(), &status)) != 0) {
    why = std::strerror(errno);
  } else if (S_ISLNK(status.st_mode)) {
    why = "it is a symbolic link; name the directory itself";
  } else if (!S_ISDIR(status.st_mode)) {
    why = "it is not a directory";
  }
  if (!why.empty()) throw Failure(ExitStatus::failed, std::string(option) + " " + ldtr::printable(path) + ": " + why);
}

using Found = cfgstore::FileCopy::Found;

const char* fateOf(const cfgstore::StagedCopy& copy, bool preview) {
  if (copy.found == Found::sameContent) return "    present    ";
  return preview ? "    to copy    " : "    copied     ";
}

}  // namespace

std::optional<SchemaDirectories> SchemaDirectories::of(const Arguments& arguments) {
  if (!arguments.has("--search-dir")) return std::nullopt;  // neither goes without the other
  return of(arguments.value("--search-dir"), arguments.value("--target-dir"));
}

SchemaDirectories SchemaDirectories::of(const std::string& search, const std::string& target) {
  const SchemaDirectories given{trimmed(search), trimmed(target)};
  refuseNoDirectory(given.search, "--search-dir", true);
  refuseNoDirectory(given.search + "/etc", "--search-dir", true);
  refuseNoDirectory(given.target, "--target-dir", false);
  return {given.search, trimmed(std::filesystem::absolute(given.target).string())};
}

void refuseTraceInSchemaFiles(const std::string& traceFile, const SchemaDirectories& directories,
                              std::initializer_list<ConfigFile*> configurations) {
  if (traceFile.empty()) return;
  const auto refuse = [&](const std::string& directory, const std::string& name, const char* role) {
    if (!name.empty()) refuseSameFile({traceFile, "the trace file"}, {directory + "/" + name, role});
  };
  for (ConfigFile* configuration : configurations) {
    for (const std::string& include : allIncludes(*configuration)) {
      // Whether a backslash separates names depends on the value; both readings are looked at.
      for (const char* separators : {"/", "/\\"}) {
        const std::string name = include.substr(include.find_last_of(separators) + 1);
        refuse(directories.search + "/etc", name, "a schema file");
        refuse(directories.target, name, "the copy of a schema file");
      }
    }
  }
}

SchemaCopies::SchemaCopies(ConfigFile& configuration, SchemaDirectories directories)
    : m_directories(std::move(directories)) {
  OVOConfigUtils::CfgUtils& store = *configuration.getCfgUtils();
  m_hasList = !valuesOf(store, kSchemaEntry, kIncludeSchema).empty();
  m_hasLegacyList = !valuesOf(store, kLegacySchemaEntry, kIncludeSchema).empty();

  const MessageListener listener;
  std::string search = m_directories.search;
  std::string text;
  char** missing = nullptr;
  char** copied = nullptr;
  const int result =
      configuration.checkSchemaFiles(search.data(), m_directories.target.c_str(), text.data(), &missing, &copied);
  const Names ownedCopied(copied);  // the staging knows more of them
  const Names ownedMissing(missing);
  for (char** name = missing; name != nullptr && *name != nullptr; ++name) m_missing.emplace_back(*name);
  if (result == kNoMemory) throw std::bad_alloc();
  const auto failures = listener.of(traced::kCheckSchemaFiles, MessageListener::Kind::failure);
  if (!failures.empty()) throw Failure(ExitStatus::failed, failures);
}

void SchemaCopies::refuseToReplace(std::span<const NamedFile> files) const {
  for (const cfgstore::StagedCopy& copy : m_staging.copies()) {
    for (const NamedFile& file : files) {
      if (!copy.isStaged() || !isSameFile(copy.destination, file.path)) continue;
      throw Failure(ExitStatus::failed, ldtr::printable(copy.source) + ": its copy would replace " + file.role + ", " +
                                            ldtr::printable(file.path));
    }
  }
}

void SchemaCopies::commit() {
  try {
    m_staging.commit();
  } catch (const cfgstore::StagingNotUndone& error) {
    throw Failure(ExitStatus::notUndone, ldtr::printable(error.what()));
  } catch (const cfgstore::StagingError& error) {
    throw Failure(ExitStatus::failed, ldtr::printable(error.what()));
  }
}

void SchemaCopies::takeBack(const std::vector<std::string>& because) {
  try {
    m_staging.rollback();
  } catch (const cfgstore::StagingNotUndone& error) {
    std::vector<std::string> lines = because;
    lines.push_back(ldtr::printable(error.what()));
    throw Failure(ExitStatus::notUndone, lines);
  }
}

cfgstore::SaveResult SchemaCopies::saveWith(cfgstore::ConfigStore& store, const std::string& target,
                                            unsigned permissions) {
  const HeldSignals signals;
  wouldSave(store, target, permissions);
  commit();
  cfgstore::SaveResult saved;
  try {
    saved = saveTo(store, target, permissions);
  } catch (const Failure& failure) {
    takeBack(failure.lines());
    throw;
  } catch (...) {
    takeBack({});
    throw;
  }
  m_staging.keep();
  return saved;
}

bool SchemaCopies::isComplete() const {
  const auto& copies = m_staging.copies();
  return m_missing.empty() && !m_hasLegacyList &&
         std::all_of(copies.begin(), copies.end(), [](const auto& copy) { return copy.isStaged(); });
}

void SchemaCopies::tell(bool preview, std::ostream& out) const {
  out << "  schemas  from " << ldtr::printable(m_directories.search) << "/etc to "
      << ldtr::printable(m_directories.target) << '\n';
  for (const cfgstore::StagedCopy& copy : m_staging.copies()) {
    if (!copy.isStaged()) continue;
    out << fateOf(copy, preview) << shown(nameIn(copy.destination))
        << (copy.found == Found::otherContent ? ", in place of a different file, which is kept" : "") << '\n';
    if (!copy.backupPath.empty()) out << "    kept       " << ldtr::printable(copy.backupPath) << '\n';
  }
  for (const cfgstore::StagedCopy& copy : m_staging.copies()) {
    if (copy.isStaged()) continue;
    out << "    not copied " << shown(nameIn(copy.destination)) << ": " << ldtr::printable(copy.refusal) << '\n';
  }
  for (const std::string& name : m_missing) out << "    not found  " << shown(name) << '\n';
  if (m_staging.copies().empty() && m_missing.empty()) {
    out << (m_hasList ? "    none but the server's own are included\n" : "    none are included\n");
  }
  if (m_hasLegacyList) {
    out << "    not looked at: the list of " << kLegacySchemaEntry << ", the legacy name of the schema entry\n";
  }
}

}  // namespace tool
