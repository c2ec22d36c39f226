// Replay.cpp -- runs a fuzz target once on each file of the directories that it is given, without libFuzzer. Built by
// every compiler, in place of the program that makes inputs up.
//
// The name of each file is printed before it is run, so that the last one printed is the one that a broken promise is
// about. Exit status: 0; 1 when there is nothing to run or a file cannot be read; a broken promise aborts.

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "Fuzz.h"
#include "ListBlocks.h"

// What is left behind on purpose stays: the program ends soon, and its leak checker knows of it.
void fuzz::releaseListBlocks() {}

namespace {

using Paths = std::vector<std::filesystem::path>;

Paths filesIn(const std::filesystem::path& directory) {
  Paths files;
  if (!std::filesystem::exists(directory)) return files;  // a target without regressions
  for (const auto& entry : std::filesystem::recursive_directory_iterator(directory)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

bool run(const std::filesystem::path& file) {
  std::printf("%s\n", file.c_str());
  std::fflush(stdout);
  std::ifstream stream(file, std::ios::binary);
  if (!stream) return false;
  const std::string input{std::istreambuf_iterator<char>(stream), {}};
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
  return true;
}

}  // namespace

int main(int count, char** arguments) {
  std::size_t files = 0;
  for (int i = 1; i < count; ++i) {
    for (const std::filesystem::path& file : filesIn(arguments[i])) {
      if (!run(file)) {
        std::fprintf(stderr, "%s cannot be read\n", file.c_str());
        return 1;
      }
      ++files;
    }
  }
  std::printf("%zu inputs replayed\n", files);
  return files == 0 ? 1 : 0;
}
