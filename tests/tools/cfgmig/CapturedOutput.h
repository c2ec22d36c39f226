// CapturedOutput.h -- a file that takes what a program writes, and has no name that somebody would have to remove.

#ifndef CFGMIG_TESTS_CAPTUREDOUTPUT_H
#define CFGMIG_TESTS_CAPTUREDOUTPUT_H

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <string>

// The caller owns the descriptor, until `readAndClose`.
inline int temporaryFile() {
  const int file = ::open("/tmp", O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
  if (file < 0) throw std::runtime_error("no file for a program's output");
  return file;
}

inline std::string readAndClose(int file) {
  std::string text;
  std::array<char, 4096> buffer{};
  for (off_t offset = 0;;) {
    const ssize_t count = ::pread(file, buffer.data(), buffer.size(), offset);
    if (count <= 0) break;
    text.append(buffer.data(), static_cast<std::size_t>(count));
    offset += count;
  }
  ::close(file);
  return text;
}

#endif  // CFGMIG_TESTS_CAPTUREDOUTPUT_H
