// MakePages.cpp -- a program of the build: makes the manual pages or the completions that are installed with the tool.
//
//   make_pages manuals SCHEMA DIRECTORY     DIRECTORY/man1/cfgmig.1, man1/cfgmig-plan.1 and so on, man5/cfgmig-report.5
//   make_pages completions DIRECTORY        DIRECTORY/bash/cfgmig, zsh/_cfgmig, fish/cfgmig.fish
//
// What was in these directories is removed first, so that no page stays of a command that is gone.

#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "options/Completion.h"
#include "options/ManualPages.h"
#include "options/SchemaPage.h"

namespace {

using std::filesystem::path;

void write(const path& file, const std::function<void(std::ostream&)>& content) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream out(file, std::ios::binary);
  content(out);
  out.close();
  if (!out) throw std::runtime_error(file.string() + ": cannot be written");
}

std::string contentOf(const path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw std::runtime_error(file.string() + ": cannot be read");
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void makeManuals(const path& schema, const path& directory) {
  std::filesystem::remove_all(directory / "man1");
  std::filesystem::remove_all(directory / "man5");
  write(directory / "man1" / "cfgmig.1", [](std::ostream& out) { tool::writeToolPage(out); });
  for (const tool::Command& command : tool::commands()) {
    write(directory / "man1" / (tool::pageOf(command) + ".1"),
          [&](std::ostream& out) { tool::writeCommandPage(command, out); });
  }
  const std::string name = tool::kReportPage;
  write(directory / "man5" / (name + ".5"),
        [&](std::ostream& out) { tool::writeSchemaPage(name, contentOf(schema), out); });
}

void makeCompletions(const path& directory) {
  for (const char* const shell : {"bash", "zsh", "fish"}) std::filesystem::remove_all(directory / shell);
  write(directory / "bash" / "cfgmig", tool::writeBashCompletion);
  write(directory / "zsh" / "_cfgmig", tool::writeZshCompletion);
  write(directory / "fish" / "cfgmig.fish", tool::writeFishCompletion);
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  try {
    if (words.size() == 3 && words[0] == "manuals") {
      makeManuals(words[1], words[2]);
    } else if (words.size() == 2 && words[0] == "completions") {
      makeCompletions(words[1]);
    } else {
      std::cerr << "usage: make_pages manuals SCHEMA DIRECTORY | completions DIRECTORY\n";
      return 2;
    }
  } catch (const std::exception& error) {
    std::cerr << "make_pages: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
