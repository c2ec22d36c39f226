#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "StoreMaker.h"

namespace {

// A store on a temporary file.
class MadeEmbedded : public MadeStore {
 public:
  explicit MadeEmbedded(const std::vector<fake::Entry>& entries) {
    static int number = 0;
    m_path = std::filesystem::temp_directory_path() /
             ("cfgmig-store-" + std::to_string(getpid()) + "-" + std::to_string(++number) + ".ldif");
    std::ofstream file(m_path);
    for (const fake::Entry& entry : entries) {
      file << "dn: " << entry.dn << '\n';
      for (const fake::Attribute& attribute : entry.attributes) {
        for (const std::string& value : attribute.values) {
          file << attribute.name << ": " << value << '\n';
        }
      }
      file << '\n';
    }
    file.close();
    if (!file) {
      throw std::runtime_error("cannot write " + m_path.string());
    }
    m_utils = std::make_unique<OVOConfigUtils::CfgUtils>(m_path.c_str(), nullptr);
  }

  ~MadeEmbedded() override {
    m_utils.reset();
    std::error_code ignored;
    std::filesystem::remove(m_path, ignored);
  }

  OVOConfigUtils::CfgUtils& utils() override { return *m_utils; }

 private:
  std::filesystem::path m_path;
  std::unique_ptr<OVOConfigUtils::CfgUtils> m_utils;
};

}  // namespace

std::unique_ptr<MadeStore> makeStore(const std::vector<fake::Entry>& entries) {
  return std::make_unique<MadeEmbedded>(entries);
}
