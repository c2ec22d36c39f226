// PipeReader.h -- reads a pipe to its end, but does not wait for ever for a program that nobody has started.

#ifndef CFGMIG_LIBCFGSTORE_PIPEREADER_H
#define CFGMIG_LIBCFGSTORE_PIPEREADER_H

#include <sys/types.h>

#include <cstddef>

namespace cfgstore {

// A pipe that the shell hands over, as in `cfgmig list <(ssh host cat config)`, has its writer already, however long
// that takes to write; one with a name may be waiting for a writer that never comes.
class PipeReader {
 public:
  static constexpr ssize_t kNoWriter = -2;

  // `pipe` is opened with O_NONBLOCK, and stays the caller's.
  explicit PipeReader(int pipe) : m_pipe(pipe) {}

  // Reads until `wanted` bytes are there or the pipe ends: how many there are, -1 with errno set, or kNoWriter when
  // nobody has opened the pipe for writing within three seconds.
  ssize_t read(char* to, std::size_t wanted);

 private:
  void lookForWriter();

  int m_pipe;
  bool m_hadWriter = false;
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_PIPEREADER_H
