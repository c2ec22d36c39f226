// TraceFixture.h -- a test that finds the trace facility as it is at the start of a program and leaves it so.

#ifndef CFGMIG_TESTS_LIBLDTR_TRACEFIXTURE_H
#define CFGMIG_TESTS_LIBLDTR_TRACEFIXTURE_H

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "TraceControl.h"
#include "ldtr.h"

// What a record held while the sink was called.
struct KeptRecord {
  explicit KeptRecord(const ldtr::Record& record)
      : kind(record.kind),
        events(record.events),
        identifier(record.identifier),
        method(record.method),
        result(record.result),
        messageClass(record.messageClass),
        message(record.message) {}

  ldtr::RecordKind kind;
  std::uint32_t events;
  unsigned long identifier;
  std::string method;
  long result;
  unsigned long messageClass;
  std::string message;
};

class TraceFixture : public testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = testing::TempDir() + "ldtr-XXXXXX";
    ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
    m_directory = pattern;
    reset();
  }

  void TearDown() override {
    reset();
    std::filesystem::remove_all(m_directory);
  }

  std::string path(const std::string& name) const { return m_directory / name; }

  static std::string contentOf(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  }

  ldtr::Sink keep() {
    return [this](const ldtr::Record& record) { records.emplace_back(record); };
  }

  std::vector<KeptRecord> records;

 private:
  static void reset() {
    ldtr::discard();
    ldtr::setEvents(0);
    ::unsetenv("LDTR_EVENTS");
    ::unsetenv("LDTR_FILE");
  }

  std::filesystem::path m_directory;
};

#endif  // CFGMIG_TESTS_LIBLDTR_TRACEFIXTURE_H
