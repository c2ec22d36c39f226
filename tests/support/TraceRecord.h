// TraceRecord.h -- one record that the library wrote to the fake trace facility, with all its arguments, and the
// texts that tests compare. A text holds every argument, so two equal texts are two equal records.

#ifndef CFGMIG_TESTS_SUPPORT_TRACERECORD_H
#define CFGMIG_TESTS_SUPPORT_TRACERECORD_H

#include <string>
#include <string_view>
#include <vector>

namespace fake {

struct TraceRecord {
  enum class Kind { entry, exit, debug, globalDebug };
  Kind kind;
  unsigned long identifier = 0;  // 0 for a global debug message
  unsigned long word = 0;        // entry: record word; debug: the formatter's record word
  unsigned long exitClass = 0;   // exit
  unsigned long event = 0;       // exit
  long result = 0;               // exit
  unsigned long messageClass = 0;
  const void* data = nullptr;  // the last argument of the formatter or the function; the library always passes null
  std::string format = {};     // debug: as the library wrote it
  std::string message = {};    // debug: formatted
};

// The record's text: "entry(0x3200000, 0x51010100)", "exit(0x51010100, 33, 0x1000, 1)",
// "debug(0x51010100, 0xc8110000) getDns: ...\n", "debug(global, 0xc8010000) ...\n". Data other than null and a
// formatter's record word other than 0x3400000 are added at the end.
std::string text(const TraceRecord& record);

// A traced method as the trace identifier table has it.
struct Traced {
  const char* name;
  unsigned long identifier;
  bool isPublic;
};

// The texts that are expected of a method.
std::string entryOf(const Traced& method);
std::string exitOf(const Traced& method, long result);
std::string messageOf(const Traced& method, std::string_view message, unsigned long messageClass = 0xc8110000);
std::string globalMessage(std::string_view message);
// The message that a null list brings about.
std::string nullListMessage();

// What is wrong with the nesting of entry and exit records: each exit must close the innermost open entry, each
// debug message must carry the innermost open identifier. Empty when it is right and everything is closed.
std::string imbalance(const std::vector<TraceRecord>& records);

}  // namespace fake

#endif  // CFGMIG_TESTS_SUPPORT_TRACERECORD_H
