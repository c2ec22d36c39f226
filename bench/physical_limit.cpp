// physical_limit.cpp -- what no program that compares or merges two configurations can do without: look at every line
// of both files and, for a merge, bring a file of the result's size to the disk.
//
//   physical_limit [--plainly] OLD NEW         maps both files and hashes each of their lines, in one thread
//   physical_limit [--plainly] OLD NEW OUT     and then puts a file of NEW's bytes at OUT, as a careful program
//                                              replaces a file: written once beside it, brought to the disk, renamed,
//                                              the directory synced
//
// It does so as fast as we know how: the files are mapped in one step, and the hash is made as fast as memory is read.
// With --plainly it is what one writes without a second thought: pages are mapped when they are touched, and the hash
// is the standard library's.
//
// Prints the number of lines and a digest of them, so that no compiler can leave the work out.

#define XXH_INLINE_ALL
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <xxhash.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <functional>
#include <iostream>
#include <string>
#include <string_view>
#include <system_error>

namespace {

[[noreturn]] void fail(const std::string& what) { throw std::system_error(errno, std::generic_category(), what); }

// Lives as long as the process.
std::string_view mapped(const char* path, bool isPlain) {
  const int descriptor = ::open(path, O_RDONLY | O_CLOEXEC);
  struct stat status {};
  if (descriptor < 0 || ::fstat(descriptor, &status) != 0) fail(path);
  const std::size_t size = static_cast<std::size_t>(status.st_size);
  if (size == 0) return {};
  void* const start =
      ::mmap(nullptr, size, PROT_READ, isPlain ? MAP_PRIVATE : MAP_PRIVATE | MAP_POPULATE, descriptor, 0);
  if (start == MAP_FAILED) fail(path);
  ::close(descriptor);
  return {static_cast<const char*>(start), size};
}

struct Lines {
  std::uint64_t count = 0;
  std::uint64_t digest = 0;

  template <class Hash>
  void add(std::string_view text, const Hash& hash) {
    while (!text.empty()) {
      const void* const end = std::memchr(text.data(), '\n', text.size());
      const std::size_t length =
          end == nullptr ? text.size() : static_cast<std::size_t>(static_cast<const char*>(end) - text.data());
      digest += hash(text.substr(0, length));
      ++count;
      text.remove_prefix(end == nullptr ? length : length + 1);
    }
  }
};

void writeAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(descriptor, text.data(), text.size());
    if (written < 0 && errno != EINTR) fail("write");
    if (written > 0) text.remove_prefix(static_cast<std::size_t>(written));
  }
}

void sync(int descriptor) {
  if (descriptor < 0 || ::fsync(descriptor) != 0) fail("fsync");
  ::close(descriptor);
}

void replace(const std::string& path, std::string_view text) {
  const std::string beside = path + ".new";
  const int descriptor = ::open(beside.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (descriptor < 0) fail(beside);
  writeAll(descriptor, text);
  sync(descriptor);
  if (std::rename(beside.c_str(), path.c_str()) != 0) fail(path);
  const std::filesystem::path directory = std::filesystem::absolute(path).parent_path();
  sync(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

}  // namespace

int main(int argc, char** argv) {
  const bool isPlain = argc > 1 && std::string_view(argv[1]) == "--plainly";
  if (isPlain) {
    --argc;
    ++argv;
  }
  if (argc != 3 && argc != 4) {
    std::cerr << "usage: physical_limit [--plainly] OLD NEW [OUT]\n";
    return 2;
  }
  try {
    const std::string_view old = mapped(argv[1], isPlain);
    const std::string_view now = mapped(argv[2], isPlain);
    Lines lines;
    for (const std::string_view text : {old, now}) {
      if (isPlain) {
        lines.add(text, std::hash<std::string_view>());
      } else {
        lines.add(text, [](std::string_view line) { return XXH3_64bits(line.data(), line.size()); });
      }
    }
    if (argc == 4) replace(argv[3], now);
    std::cout << lines.count << " lines, digest " << lines.digest << '\n';
  } catch (const std::exception& error) {
    std::cerr << "physical_limit: " << error.what() << '\n';
    return 1;
  }
}
