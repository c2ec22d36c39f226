// run_timed.cpp -- runs a program once and notes what it took. It is small itself: a process counts what its parent had
// in memory when it was made towards its own peak, so an interpreter that started the program would be measured, too.
//
//   run_timed RESULT MEMORY PROGRAM [ARGUMENT...]
//
// RESULT receives one line: seconds from before the start of the program to after its end, seconds of user and of
// system time, peak memory in KiB, and the exit status, 128 and the signal's number for a program that was killed.
// MEMORY is how many MiB of address space the program may have, 0 for as much as it likes.

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>

namespace {

double seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}

bool limitMemory(unsigned long long mebibytes) {
  if (mebibytes == 0) return true;
  const rlim_t bytes = static_cast<rlim_t>(mebibytes) << 20;
  const rlimit limit{bytes, bytes};
  return ::setrlimit(RLIMIT_AS, &limit) == 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) {
    std::cerr << "usage: run_timed RESULT MEMORY PROGRAM [ARGUMENT...]\n";
    return 2;
  }
  if (!limitMemory(std::strtoull(argv[2], nullptr, 10))) {
    std::cerr << "run_timed: memory cannot be limited\n";
    return 1;
  }
  const auto start = std::chrono::steady_clock::now();
  pid_t child = 0;
  if (const int error = ::posix_spawnp(&child, argv[3], nullptr, nullptr, argv + 3, environ); error != 0) {
    std::cerr << "run_timed: " << argv[3] << ": " << std::strerror(error) << '\n';
    return 1;
  }
  int status = 0;
  rusage usage{};
  if (::wait4(child, &status, 0, &usage) != child) return 1;
  const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
  std::ofstream result(argv[1]);
  result.precision(9);
  result << wall.count() << ' ' << seconds(usage.ru_utime) << ' ' << seconds(usage.ru_stime) << ' ' << usage.ru_maxrss
         << ' ' << (WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status)) << '\n';
  return result.flush() ? 0 : 1;
}
