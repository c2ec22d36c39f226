#include "FileNames.h"

#include <array>

namespace cfgstore {
namespace {

constexpr std::size_t kLongestNamePart = 200;  // of the 255 bytes that a name may have

}  // namespace

std::string directoryOf(const std::string& path) {
  const auto slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

std::string nameOf(const std::string& path) {
  const auto slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string besideName(const std::string& path, std::string_view purpose) {
  return directoryOf(path) + "/." + nameOf(path).substr(0, kLongestNamePart) + ".cfgmig-" + std::string(purpose);
}

std::string backupName(const std::string& path, std::time_t time, int number) {
  std::tm local{};
  ::localtime_r(&time, &local);
  std::array<char, 32> text{};
  const std::size_t length = std::strftime(text.data(), text.size(), "%Y%m%d-%H%M%S", &local);
  std::string name = path + ".";
  name.append(text.data(), length);
  if (number > 1) name.append("-").append(std::to_string(number));
  return name + ".bak";
}

}  // namespace cfgstore
