#include <filesystem>
#include <fstream>

#include "library_subject.h"
#include "pair_files.h"

LibrarySubject librarySubjectOf(std::int64_t entries) {
  const PairFiles& files = pairFilesOf(entries);
  LibrarySubject subject{files.old, files.now, files.directory, files.directory + "/target"};
  std::filesystem::create_directory(files.directory + "/etc");
  std::filesystem::create_directory(subject.schemaTarget);
  std::ofstream(files.directory + "/etc/V3.site.at") << "# the one that the generated configuration includes\n";
  return subject;
}
