#include "migration/UndoRecord.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "Base64.h"
#include "Failure.h"
#include "FileNames.h"
#include "JsonText.h"
#include "NewFile.h"
#include "PrintableText.h"
#include "migration/Fingerprint.h"
#include "report/Sha256.h"

namespace tool {
namespace {

using OrderedJson = nlohmann::ordered_json;

constexpr const char* kFormat = "cfgmig undo";
constexpr unsigned kFormatVersion = 2;

class OtherVersion : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

[[noreturn]] void fail(const std::string& path, const std::string& why) {
  throw Failure(ExitStatus::failed, ldtr::printable(path) + ": " + why);
}

OrderedJson jsonOf(const UndoInput& file) {
  return {{"path", jsonText(file.path)}, {"fingerprint", file.fingerprint}, {"size", file.size}};
}

OrderedJson jsonOf(const UndoRecord& record) {
  OrderedJson json = {{"format", kFormat},
                      {"format_version", kFormatVersion},
                      {"tool_version", record.toolVersion},
                      {"time", record.time},
                      {"source_version", record.sourceVersion},
                      {"target", jsonText(record.target)},
                      {"fingerprint", record.fingerprint},
                      {"backup", jsonText(record.backup)},
                      {"backup_fingerprint", record.backupFingerprint},
                      {"old", jsonOf(record.oldFile)},
                      {"new", jsonOf(record.newFile)},
                      {"planned_sha256", record.plannedSha256}};
  json["schemas"] = nullptr;
  if (record.schemas) {
    json["schemas"] = {{"search_directory", jsonText(record.schemas->searchDirectory)},
                       {"target_directory", jsonText(record.schemas->targetDirectory)}};
  }
  json["copies"] = OrderedJson::array();
  for (const UndoCopy& copy : record.copies) {
    json["copies"].push_back({{"path", jsonText(copy.path)},
                              {"fingerprint", copy.fingerprint},
                              {"backup", jsonText(copy.backup)},
                              {"backup_fingerprint", copy.backupFingerprint}});
  }
  return json;
}

// A text, which is in base64 when it is not UTF-8. Throws std::runtime_error.
std::string textFrom(const OrderedJson& json) {
  if (!json.is_object()) return json.get<std::string>();
  std::string decoded = json.at("base64").get<std::string>();
  if (!cfgstore::decodeBase64InPlace(decoded, 0)) throw std::runtime_error("base64");
  return decoded;
}

// The fingerprint of a file, which is given exactly when there is the file.
std::string fingerprintOf(const OrderedJson& json, const std::string& path) {
  std::string text = json.get<std::string>();
  if (path.empty() ? !text.empty() : !isFingerprint(text)) throw std::runtime_error("fingerprint");
  return text;
}

UndoInput inputFrom(const OrderedJson& json) {
  return {textFrom(json.at("path")), fingerprintOf(json.at("fingerprint"), "a file"),
          json.at("size").get<std::uint64_t>()};
}

UndoRecord recordFrom(const OrderedJson& json) {
  if (json.at("format") != kFormat) throw std::runtime_error("format");
  if (json.at("format_version") != kFormatVersion) throw OtherVersion("format version");
  UndoRecord record;
  record.toolVersion = json.at("tool_version").get<std::string>();
  record.time = json.at("time").get<std::string>();
  record.sourceVersion = json.at("source_version").get<std::string>();
  record.target = textFrom(json.at("target"));
  record.fingerprint = fingerprintOf(json.at("fingerprint"), record.target);
  record.backup = textFrom(json.at("backup"));
  record.backupFingerprint = fingerprintOf(json.at("backup_fingerprint"), record.backup);
  record.oldFile = inputFrom(json.at("old"));
  record.newFile = inputFrom(json.at("new"));
  record.plannedSha256 = json.at("planned_sha256").get<std::string>();
  if (!record.plannedSha256.empty() && !isSha256(record.plannedSha256)) throw std::runtime_error("fingerprint");
  if (const OrderedJson& schemas = json.at("schemas"); !schemas.is_null()) {
    record.schemas = {textFrom(schemas.at("search_directory")), textFrom(schemas.at("target_directory"))};
  }
  for (const OrderedJson& each : json.at("copies")) {
    UndoCopy copy;
    copy.path = textFrom(each.at("path"));
    copy.fingerprint = fingerprintOf(each.at("fingerprint"), copy.path);
    copy.backup = textFrom(each.at("backup"));
    copy.backupFingerprint = fingerprintOf(each.at("backup_fingerprint"), copy.backup);
    record.copies.push_back(std::move(copy));
  }
  return record;
}

std::string environment(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr && value[0] == '/' ? value : "";
}

// Where programs keep what they know from one run to the next. Not beside the configuration, whose directory belongs to
// its server.
std::string stateDirectory() {
  if (const char* const given = std::getenv("CFGMIG_STATE_DIRECTORY"); given != nullptr && given[0] != '\0') {
    return std::filesystem::absolute(given).string();
  }
  if (::geteuid() == 0) return "/var/lib/cfgmig";
  if (const std::string state = environment("XDG_STATE_HOME"); !state.empty()) return state + "/cfgmig";
  return environment("HOME") + "/.local/state/cfgmig";
}

}  // namespace

std::string undoRecordPath(const std::string& target) {
  std::error_code error;
  const std::filesystem::path resolved = std::filesystem::weakly_canonical(target, error);
  return stateDirectory() + "/undo/" + sha256(error ? target : resolved.string()) + ".json";
}

std::optional<UndoRecord> readUndoRecord(const std::string& target) {
  const std::string path = undoRecordPath(target);
  if (::access(path.c_str(), F_OK) != 0 && errno == ENOENT) return std::nullopt;
  std::ifstream in(path, std::ios::binary);
  if (!in) fail(path, std::strerror(errno));
  try {
    UndoRecord record = recordFrom(OrderedJson::parse(in));
    std::error_code error;
    if (std::filesystem::weakly_canonical(target, error).string() == record.target) return record;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const OtherVersion&) {
    fail(path, "another version of cfgmig has written this record; undo with that one, or put the backup back by hand");
  } catch (const std::exception&) {
    fail(path, "it is no record that cfgmig apply has written, or has been changed since");
  }
  fail(path, "it is the record of another file; this one has been moved or renamed since");
}

void writeUndoRecord(const UndoRecord& record) {
  const std::string path = undoRecordPath(record.target);
  const std::string text = jsonOf(record).dump(1) + "\n";
  const std::array<std::string_view, 1> pieces{text};
  const std::string directory = cfgstore::directoryOf(path);
  std::error_code failure;
  std::filesystem::create_directories(directory, failure);
  if (!failure) std::filesystem::permissions(directory, std::filesystem::perms::owner_all, failure);
  if (failure) fail(directory, "the record for undo cannot be written: " + failure.message());
  try {
    cfgstore::FileSystem& files = cfgstore::FileSystem::real();
    cfgstore::NewFile file(files, cfgstore::besideName(path, "new"));
    file.make(pieces, {});
    file.replace(path);
  } catch (const cfgstore::FileError& error) {
    fail(path, std::string("the record for undo cannot be written: ") + ldtr::printable(error.what()));
  }
}

void clearHalfUndoRecord(const std::string& target) {
  const std::string path = undoRecordPath(target);
  try {
    cfgstore::NewFile::clearLeftover(cfgstore::FileSystem::real(), cfgstore::besideName(path, "new"));
  } catch (const cfgstore::FileError& error) {
    fail(path, ldtr::printable(error.what()));
  }
}

void removeUndoRecord(const std::string& target) {
  const std::string path = undoRecordPath(target);
  if (::unlink(path.c_str()) != 0 && errno != ENOENT) fail(path, std::strerror(errno));
}

}  // namespace tool
