#include "LockHolder.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

namespace cfgstore {
namespace {

namespace fs = std::filesystem;

bool hasOpen(long process, const struct stat& status) {
  std::error_code error;
  const fs::path files = "/proc/" + std::to_string(process) + "/fd";
  for (fs::directory_iterator entry(files, error), end; !error && entry != end; entry.increment(error)) {
    struct stat open {};
    if (::stat(entry->path().c_str(), &open) != 0) continue;
    if (open.st_dev == status.st_dev && open.st_ino == status.st_ino) return true;
  }
  return false;
}

// The process that holds the flock, 0 if it cannot be told. A line looks so, with the device in hexadecimal:
// "1: FLOCK  ADVISORY  WRITE 1234 fe:00:5678 0 EOF". On some file systems the device is another one than stat tells;
// then a process counts that has the file open.
long holderOf(const struct stat& status) {
  std::ifstream locks("/proc/locks");
  for (std::string line; std::getline(locks, line);) {
    std::istringstream words(line);
    std::string number, kind, advisory, access, where;
    long process = 0;
    words >> number >> kind >> advisory >> access >> process >> where;
    if (!words || kind != "FLOCK" || process <= 0) continue;
    unsigned major = 0;
    unsigned minor = 0;
    unsigned long inode = 0;
    if (std::sscanf(where.c_str(), "%x:%x:%lu", &major, &minor, &inode) != 3 || inode != status.st_ino) continue;
    if (::gnu_dev_makedev(major, minor) == status.st_dev || hasOpen(process, status)) return process;
  }
  return 0;
}

// When a process was started, 0 if it cannot be told: the boot time, and the 22nd word of its status in ticks since
// then. The second word is the name in brackets, which may hold anything.
std::time_t startOf(long process) {
  constexpr int kWordsBehindName = 20;
  std::ifstream status("/proc/" + std::to_string(process) + "/stat");
  std::string text;
  std::getline(status, text, '\0');
  const auto bracket = text.rfind(')');
  if (bracket == std::string::npos) return 0;
  std::istringstream words(text.substr(bracket + 1));
  std::string word;
  for (int i = 0; i < kWordsBehindName; ++i) words >> word;
  const long ticks = std::atol(word.c_str());

  std::ifstream system("/proc/stat");
  for (std::string line; std::getline(system, line);) {
    if (!line.starts_with("btime ")) continue;
    return static_cast<std::time_t>(std::atol(line.c_str() + 6)) + ticks / ::sysconf(_SC_CLK_TCK);
  }
  return 0;
}

std::string nameOfProcess(long process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/comm");
  std::string name;
  std::getline(file, name);
  return name;
}

}  // namespace

std::string describeHolder(int file) {
  struct stat status {};
  const long process = ::fstat(file, &status) == 0 ? holderOf(status) : 0;
  if (process == 0) return kBusy;
  std::string text = std::string(kBusy) + ": process " + std::to_string(process);
  if (const std::string name = nameOfProcess(process); !name.empty()) text += " (" + name + ")";
  if (const std::time_t start = startOf(process); start != 0) {
    std::tm local{};
    ::localtime_r(&start, &local);
    std::array<char, 32> time{};
    text.append(", running since ").append(time.data(), std::strftime(time.data(), time.size(), "%F %T", &local));
  }
  return text;
}

}  // namespace cfgstore
