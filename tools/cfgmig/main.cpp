#include <malloc.h>
#include <sys/prctl.h>

#include <csignal>
#include <iostream>
#include <string>
#include <vector>

#include "RunTool.h"

int main(int argc, char** argv) {
  // A crash leaves no image of the memory, which holds the passwords of the configurations.
  ::prctl(PR_SET_DUMPABLE, 0);
  // A reader of the output that goes away is told as a failure to write, not by an untimely end.
  std::signal(SIGPIPE, SIG_IGN);
  // Nor by a limit on the size of files: the write fails, and what was begun is taken back.
  std::signal(SIGXFSZ, SIG_IGN);
  // Tables as large as a configuration go back to the system when they are freed. Otherwise the allocator would take
  // the first of them for a sign to keep the memory of all that follow.
  ::mallopt(M_MMAP_THRESHOLD, 1 << 20);
  std::ios::sync_with_stdio(false);
  tool::Console console{std::cout, std::cerr};
  const std::vector<std::string> words(argv + (argc > 0 ? 1 : 0), argv + argc);
  return static_cast<int>(tool::runTool(words, console));
}
