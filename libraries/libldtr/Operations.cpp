// Operations.cpp -- the operations of ldtr.h: each makes a record of its arguments and delivers it.

#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <string>

#include "Sinks.h"
#include "TraceControl.h"
#include "ldtr.h"

std::uint32_t trcEvents = 0;

namespace {

constexpr unsigned long kInternalEntryRecord = 0x32a0000;
constexpr unsigned long kInternalExitClass = 43;

// Delivers the message that `format` and `arguments` make, whole however long it is. Most messages fit the array; one
// that does not is formatted a second time into a string of its size.
__attribute__((format(printf, 3, 0))) void deliverMessage(unsigned long identifier, unsigned long messageClass,
                                                          const char* format, va_list arguments) {
  const int savedErrno = errno;
  ldtr::Record record;
  record.identifier = identifier;
  record.messageClass = messageClass;

  va_list again;
  va_copy(again, arguments);
  char shortMessage[256];
  const int length = std::vsnprintf(shortMessage, sizeof shortMessage, format, arguments);
  try {
    std::string longMessage;
    if (length < 0) {
      record.message = format;  // arguments that cannot be shown; the text at least can
    } else if (static_cast<std::size_t>(length) < sizeof shortMessage) {
      record.message = std::string_view(shortMessage, static_cast<std::size_t>(length));
    } else {
      longMessage.resize(static_cast<std::size_t>(length) + 1);
      std::vsnprintf(longMessage.data(), longMessage.size(), format, again);
      longMessage.pop_back();
      record.message = longMessage;
    }
    ldtr::internal::deliver(record);
  } catch (const std::exception&) {  // no memory for a long message
  }
  va_end(again);
  errno = savedErrno;
}

}  // namespace

void ldtr_write(unsigned long record, unsigned long identifier, const void* /*data*/) {
  ldtr::Record entry;
  entry.kind = ldtr::RecordKind::entry;
  entry.events = record == kInternalEntryRecord ? ldtr::kInternalEntry : ldtr::kPublicEntry;
  entry.identifier = identifier;
  ldtr::internal::deliver(entry);
}

void ldtr_exit_errcode(unsigned long identifier, unsigned long exitClass, unsigned long /*event*/, long result,
                       const void* /*data*/) {
  ldtr::Record exit;
  exit.kind = ldtr::RecordKind::exit;
  exit.events = exitClass == kInternalExitClass ? ldtr::kInternalEntry | ldtr::kInternalExit
                                                : ldtr::kPublicEntry | ldtr::kPublicExit;
  exit.identifier = identifier;
  exit.result = result;
  ldtr::internal::deliver(exit);
}

void ldtr_formater_local::debug(unsigned long messageClass, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  deliverMessage(m_identifier, messageClass, format, arguments);
  va_end(arguments);
}

void ldtr_formater_global::debug(unsigned long messageClass, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  deliverMessage(0, messageClass, format, arguments);
  va_end(arguments);
}

namespace ldtr {

void setEvents(std::uint32_t mask) { trcEvents = mask; }

std::uint32_t events() { return trcEvents; }

}  // namespace ldtr
