#include "TestAttributes.h"

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <sstream>
#include <stdexcept>

namespace cfgstore::test {
namespace {

constexpr char kList[] = "system.posix_acl_access";

std::string numberOf(std::uint32_t number, int size) {
  std::string bytes;
  for (int i = 0; i < size; ++i) bytes += static_cast<char>(number >> 8 * i & 0xff);
  return bytes;
}

}  // namespace

std::string listOf(const std::vector<ListEntry>& entries) {
  std::string list = numberOf(2, 4);
  for (const ListEntry& entry : entries) {
    list += numberOf(entry.tag, 2) + numberOf(entry.permissions, 2) + numberOf(entry.id, 4);
  }
  return list;
}

bool setAttribute(const std::string& path, const char* name, const std::string& value) {
  return ::setxattr(path.c_str(), name, value.data(), value.size(), 0) == 0;
}

std::string attribute(const std::string& path, const char* name) {
  std::array<char, 1024> value{};
  const ssize_t size = ::getxattr(path.c_str(), name, value.data(), value.size());
  return size < 0 ? "(none)" : std::string(value.data(), static_cast<std::size_t>(size));
}

bool giveAttributes(const std::string& path) {
  if (::chmod(path.c_str(), 0640) != 0) throw std::runtime_error("the mode cannot be set");
  const bool complete = setAttribute(path, "user.origin", std::string("old\0server", 10)) &&
                        setAttribute(path, "user.empty", "") &&
                        setAttribute(path, kList,
                                     listOf({{kOwnerTag, 6},
                                             {kUserTag, 4, 1234},
                                             {kOwningGroupTag, 0},
                                             {kGroupTag, 6, 2345},
                                             {kMaskTag, 4},
                                             {kOtherTag, 0}}));
  if (::geteuid() == 0) {
    setAttribute(path, "trusted.origin", "t");
    setAttribute(path, "security.origin", "s");
  }
  return complete;
}

std::string describeAttributes(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return "no file";
  std::ostringstream text;
  text << status.st_uid << ':' << status.st_gid << ' ' << std::oct << (status.st_mode & 07777);
  std::array<char, 4096> names{};
  const ssize_t size = ::listxattr(path.c_str(), names.data(), names.size());
  std::vector<std::string> lines;
  for (ssize_t at = 0; at < size;) {
    const std::string name = names.data() + at;
    at += static_cast<ssize_t>(name.size()) + 1;
    if (name == "user.cfgmig.unfinished") continue;
    std::ostringstream line;
    line << ' ' << name << '=' << std::hex;
    for (const char c : attribute(path, name.c_str())) line << static_cast<int>(static_cast<unsigned char>(c)) << '.';
    lines.push_back(line.str());
  }
  std::sort(lines.begin(), lines.end());
  for (const std::string& line : lines) text << line;
  return text.str();
}

}  // namespace cfgstore::test
