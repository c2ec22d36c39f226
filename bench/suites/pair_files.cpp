#include "pair_files.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>

#include "generated_pair.h"

namespace {

class Directory {
 public:
  Directory() : m_path((std::filesystem::temp_directory_path() / "bench-XXXXXX").string()) {
    if (::mkdtemp(m_path.data()) == nullptr) throw std::runtime_error(m_path + " cannot be made");
  }
  ~Directory() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }
  Directory(const Directory&) = delete;
  Directory& operator=(const Directory&) = delete;
  const std::string& path() const { return m_path; }

 private:
  std::string m_path;
};

PairFiles written(const std::string& directory, std::int64_t entries) {
  const std::string within = directory + "/" + std::to_string(entries);
  std::filesystem::create_directory(within);
  PairFiles files{within + "/old.conf", within + "/new.conf", within};
  std::ofstream old(files.old, std::ios::binary);
  std::ofstream now(files.now, std::ios::binary);
  generatePair(static_cast<std::uint64_t>(entries), 1, old, now);
  if (!old.flush() || !now.flush()) throw std::runtime_error(within + ": the files cannot be written");
  return files;
}

}  // namespace

const PairFiles& pairFilesOf(std::int64_t entries) {
  static const Directory directory;
  static std::map<std::int64_t, PairFiles> known;
  const auto found = known.find(entries);
  return found != known.end() ? found->second
                              : known.emplace(entries, written(directory.path(), entries)).first->second;
}

std::string textOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string text(std::istreambuf_iterator<char>(file), {});
  if (!file) throw std::runtime_error(path + " cannot be read");
  return text;
}
