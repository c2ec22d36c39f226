// ExampleFiles.h -- the checked-in examples, read without any code of the store.

#ifndef CFGMIG_TESTS_EXAMPLES_EXAMPLEFILES_H
#define CFGMIG_TESTS_EXAMPLES_EXAMPLEFILES_H

#include <filesystem>
#include <iosfwd>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace examples {

// Where an example is: "6.0" is the folder of that source version, "6.0/old.ldif" a file in it.
std::filesystem::path folder(const std::string& example);

// A merge that an example shows: two files of its folder and what they make.
struct Merge {
  const char* version;
  const char* oldFile;
  const char* mergedFile;
  const char* builtAnew = nullptr;  // the DN of an entry that a rule made in place of the old one
};

inline constexpr const char* kMasterServer = "CN=MASTER SERVER,CN=CONFIGURATION";

// The merges that the tests run. The new configuration is new.ldif.
inline constexpr Merge kMerges[] = {
    {"4.1", "old.ldif", "merged.ldif"},
    {"5.1", "old.ldif", "merged.ldif", kMasterServer},
    {"5.1", "old-peer.ldif", "merged-peer.ldif", kMasterServer},
    {"5.1", "old-former-master.ldif", "merged-former-master.ldif"},
    {"5.2", "old.ldif", "merged.ldif"},
    {"6.0", "old.ldif", "merged.ldif"},
};

// What a test with this parameter is called.
void PrintTo(const Merge& merge, std::ostream* out);
std::string nameOf(const Merge& merge);
std::string lettersAndDigits(std::string_view text);

// The bytes of a file. Throws when it cannot be read.
std::string contentOf(const std::filesystem::path& file);

// The lines of a text, without their line ends.
std::vector<std::string> linesOf(const std::string& text);

// What an LDIF text is made of, as far as these tests ask.
struct Shape {
  std::size_t entries = 0;
  std::size_t comments = 0;
  std::size_t foldedComments = 0;
  std::size_t commentsInsideEntries = 0;
  std::size_t foldedValues = 0;
  std::size_t base64Values = 0;
  std::size_t values = 0;                                     // of attributes, that is without the DNs
  std::vector<std::string> dns;                               // as they are written; those in base64 are left out
  std::set<std::string> names;                                // of attributes, in lower case
  std::map<std::string, std::set<std::string>> namesByEntry;  // the same, by DN in plain form
};
Shape shapeOf(const std::string& text);

std::string lowerCase(std::string_view text);

// A DN in lower case, without blanks behind its commas.
std::string plainDn(std::string_view dn);

// An empty directory of this test's own, gone with the object.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  const std::filesystem::path& path() const { return m_path; }

  // Copies a file here, with write permission for its owner, and returns where it is now.
  std::filesystem::path add(const std::filesystem::path& file) const;

  // The names of the files here, sorted.
  std::vector<std::string> names() const;

 private:
  std::filesystem::path m_path;
};

}  // namespace examples

#endif  // CFGMIG_TESTS_EXAMPLES_EXAMPLEFILES_H
