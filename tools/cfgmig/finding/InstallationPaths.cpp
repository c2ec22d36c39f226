#include "finding/InstallationPaths.h"

#include <algorithm>
#include <iterator>

#include "finding/Finder.h"

namespace tool {
namespace {

// The server's own schema files are recognised by their names, and stand in "etc" of the installation.
constexpr std::string_view kOwnSchemaFiles[] = {
    "V3.modifiedschema", "V3.config.at", "V3.config.oc", "V3.user.at",      "V3.user.oc",      "V3.zor.at",
    "V3.zor.oc",         "V3.system.at", "V3.system.oc", "V3.ldapsyntaxes", "V3.matchingrules"};

// Which settings tell a directory of the installation, and below what name in it their files stand.
struct Telling {
  std::string_view attribute;
  std::string_view directory;
  bool ownSchemaFile;  // tells only when the file is one of the server's own
};
constexpr Telling kTelling[] = {
    {"zor-slapdIncludeSchema", "etc", true},
    {"zor-slapdSchemaAdditions", "etc", true},
    {"zor-slapdErrorLog", "log", false},
    {"zor-slapdTraceMessageLog", "log", false},
    {"zor-slapdLog", "log", false},
    {"zor-auditLog", "log", false},
    {"zor-slapdBulkloadErrors", "log", false},
    {"zor-slapdCLIErrors", "log", false},
};

// More are no installation but somebody's list, and each costs a search in every value.
constexpr std::size_t kMostDirectories = 32;

bool endsPath(char character) {
  return std::string_view(" \t\r\n\"'`,;:=|&()<>").find(character) != std::string_view::npos;
}

// "/opt/zor/6.0" of "/opt/zor/6.0/etc/V3.user.at"; empty when the path does not tell one.
std::string_view directoryTold(std::string_view path, const Telling& telling) {
  if (!path.starts_with('/')) return {};
  const std::size_t file = path.rfind('/');
  const std::string_view name = path.substr(file + 1);
  const auto* const end = std::end(kOwnSchemaFiles);
  if (telling.ownSchemaFile && std::find(std::begin(kOwnSchemaFiles), end, name) == end) return {};
  const std::string_view directory = path.substr(0, file);
  const std::size_t last = directory.rfind('/');
  if (last == std::string_view::npos || directory.substr(last + 1) != telling.directory) return {};
  const std::string_view told = directory.substr(0, last);
  return told.rfind('/') == 0 || told.empty() ? std::string_view() : told;  // never one directly below the root
}

bool namesPathIn(std::string_view value, std::string_view directory) {
  for (std::size_t at = value.find(directory); at != std::string_view::npos; at = value.find(directory, at + 1)) {
    const std::size_t end = at + directory.size();
    const bool begins = at == 0 || endsPath(value[at - 1]);
    if (begins && (end == value.size() || value[end] == '/' || endsPath(value[end]))) return true;
  }
  return false;
}

}  // namespace

std::vector<std::string> directoriesOfInstallation(const cfgstore::Snapshot& old, const cfgstore::Snapshot& before) {
  std::vector<std::string> directories;
  for (const Telling& telling : kTelling) {
    forEachValueOf(old, telling.attribute, [&](ValueId, const cfgstore::SnapshotValue& value) {
      const std::string_view told = directoryTold(value.value, telling);
      if (told.empty() || directories.size() == kMostDirectories) return;
      if (std::find(directories.begin(), directories.end(), told) == directories.end()) directories.emplace_back(told);
    });
  }
  const auto leaveOut = [&](std::string_view value) {
    if (value.find('/') == std::string_view::npos) return;
    std::erase_if(directories, [&](const std::string& directory) { return namesPathIn(value, directory); });
  };
  if (directories.empty()) return directories;
  for (const cfgstore::SnapshotValue& value : before.values()) leaveOut(value.value);
  before.visitSetAside([&](std::string_view, std::string_view value) { leaveOut(value); });
  return directories;
}

bool namesPathIn(std::string_view value, std::span<const std::string> directories) {
  return std::any_of(directories.begin(), directories.end(),
                     [&](const std::string& directory) { return namesPathIn(value, directory); });
}

}  // namespace tool
