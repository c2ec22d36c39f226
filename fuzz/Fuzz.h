// Fuzz.h -- what the fuzz targets share: how a broken promise is reported, and a file for a text in memory.
//
// Each target is one source file that defines LLVMFuzzerTestOneInput. It is linked twice: with libFuzzer, which makes
// inputs up, and with tests/fuzz, which replays those that are kept.

#ifndef CFGMIG_FUZZ_FUZZ_H
#define CFGMIG_FUZZ_FUZZ_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Returns 0, or does not return: a broken promise ends the program with abort.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

inline std::string_view viewOf(const std::uint8_t* data, std::size_t size) {
  return size == 0 ? std::string_view() : std::string_view(reinterpret_cast<const char*>(data), size);
}

// Ends the program with `promise` on standard error, and with what it was about; `details` may hold any bytes.
[[noreturn]] void breakOff(const char* promise, std::string_view details);

// The same unless `holds`.
inline void require(bool holds, const char* promise, std::string_view details = {}) {
  if (!holds) breakOff(promise, details);
}

// A file that has no name in any directory and goes with the object.
class MemoryFile {
 public:
  explicit MemoryFile(std::string_view content);
  ~MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  const std::string& path() const { return m_path; }

 private:
  int m_descriptor;
  std::string m_path;
};

}  // namespace fuzz

#endif  // CFGMIG_FUZZ_FUZZ_H
