// library_subject.h -- what the suite of the library's operations runs on. It is built twice: with library_on_files.cpp
// over the embedded store, and with library_on_nothing.cpp over a store that costs next to nothing, so that what is
// measured there is the library's own work.

#ifndef CFGMIG_BENCH_SUITES_LIBRARY_SUBJECT_H
#define CFGMIG_BENCH_SUITES_LIBRARY_SUBJECT_H

#include <cstdint>
#include <string>

struct LibrarySubject {
  std::string old;  // file names to open a ConfigFile on
  std::string now;
  std::string schemaSource;  // directories for checkSchemaFiles
  std::string schemaTarget;
};

LibrarySubject librarySubjectOf(std::int64_t entries);

#endif  // CFGMIG_BENCH_SUITES_LIBRARY_SUBJECT_H
