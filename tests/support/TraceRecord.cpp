#include "TraceRecord.h"

#include <cstdio>

namespace fake {

namespace {

constexpr unsigned long kDebugRecord = 0x3400000;

std::string hex(unsigned long value) {
  char text[24];
  std::snprintf(text, sizeof text, "0x%lx", value);
  return text;
}

}  // namespace

std::string text(const TraceRecord& record) {
  std::string result;
  switch (record.kind) {
    case TraceRecord::Kind::entry:
      result = "entry(" + hex(record.word) + ", " + hex(record.identifier) + ")";
      break;
    case TraceRecord::Kind::exit:
      result = "exit(" + hex(record.identifier) + ", " + std::to_string(record.exitClass) + ", " + hex(record.event) +
               ", " + std::to_string(record.result) + ")";
      break;
    case TraceRecord::Kind::debug:
      result = "debug(" + hex(record.identifier) + ", " + hex(record.messageClass) + ") " + record.message;
      break;
    case TraceRecord::Kind::globalDebug:
      result = "debug(global, " + hex(record.messageClass) + ") " + record.message;
      break;
  }
  const bool isDebug = record.kind == TraceRecord::Kind::debug || record.kind == TraceRecord::Kind::globalDebug;
  if (isDebug && record.word != kDebugRecord) {
    result += " formatter of " + hex(record.word);
  }
  if (record.data != nullptr) {
    result += " with data";
  }
  return result;
}

std::string entryOf(const Traced& method) {
  return text({.kind = TraceRecord::Kind::entry,
               .identifier = method.identifier,
               .word = method.isPublic ? 0x3200000UL : 0x32a0000UL});
}

std::string exitOf(const Traced& method, long result) {
  return text({.kind = TraceRecord::Kind::exit,
               .identifier = method.identifier,
               .exitClass = method.isPublic ? 33UL : 43UL,
               .event = method.isPublic ? 0x1000UL : 0x10000UL,
               .result = result});
}

std::string messageOf(const Traced& method, std::string_view message, unsigned long messageClass) {
  return text({.kind = TraceRecord::Kind::debug,
               .identifier = method.identifier,
               .word = kDebugRecord,
               .messageClass = messageClass,
               .message = std::string(message)});
}

std::string globalMessage(std::string_view message) {
  return text({.kind = TraceRecord::Kind::globalDebug,
               .word = kDebugRecord,
               .messageClass = 0xc8010000,
               .message = std::string(message)});
}

std::string nullListMessage() { return globalMessage("ConfigFile::freeParamVals passed a null pointer.\n"); }

std::string imbalance(const std::vector<TraceRecord>& records) {
  std::vector<unsigned long> open;
  for (const TraceRecord& record : records) {
    if (record.kind == TraceRecord::Kind::entry) {
      open.push_back(record.identifier);
    } else if (record.kind != TraceRecord::Kind::globalDebug) {
      if (open.empty() || open.back() != record.identifier) {
        return "out of turn: " + text(record);
      }
      if (record.kind == TraceRecord::Kind::exit) {
        open.pop_back();
      }
    }
  }
  return open.empty() ? "" : "never closed: " + hex(open.back());
}

}  // namespace fake
