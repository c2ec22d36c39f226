// The trace facility of the tests: keeps every record in the World.

#include <cstdarg>
#include <cstdint>
#include <cstdio>

#include "Outside.h"
#include "World.h"
#include "ldtr.h"

std::uint32_t trcEvents = 0;

namespace {

__attribute__((format(printf, 1, 0))) std::string formatted(const char* format, va_list arguments) {
  va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, again);
  va_end(again);
  std::string message(static_cast<std::size_t>(length), '\0');
  std::vsnprintf(message.data(), message.size() + 1, format, arguments);
  return message;
}

}  // namespace

void ldtr_write(unsigned long record, unsigned long identifier, const void* data) {
  const fake::OutsideLibrary outside;
  fake::World::current().record(
      {.kind = fake::TraceRecord::Kind::entry, .identifier = identifier, .word = record, .data = data});
}

void ldtr_exit_errcode(unsigned long identifier, unsigned long exitClass, unsigned long event, long result,
                       const void* data) {
  const fake::OutsideLibrary outside;
  fake::World::current().record({.kind = fake::TraceRecord::Kind::exit,
                                 .identifier = identifier,
                                 .exitClass = exitClass,
                                 .event = event,
                                 .result = result,
                                 .data = data});
}

void ldtr_formater_local::debug(unsigned long messageClass, const char* format, ...) {
  const fake::OutsideLibrary outside;
  va_list arguments;
  va_start(arguments, format);
  std::string message = formatted(format, arguments);
  va_end(arguments);
  fake::World::current().record({.kind = fake::TraceRecord::Kind::debug,
                                 .identifier = identifier(),
                                 .word = record(),
                                 .messageClass = messageClass,
                                 .data = data(),
                                 .format = format,
                                 .message = std::move(message)});
}

void ldtr_formater_global::debug(unsigned long messageClass, const char* format, ...) {
  const fake::OutsideLibrary outside;
  va_list arguments;
  va_start(arguments, format);
  std::string message = formatted(format, arguments);
  va_end(arguments);
  fake::World::current().record({.kind = fake::TraceRecord::Kind::globalDebug,
                                 .word = record(),
                                 .messageClass = messageClass,
                                 .format = format,
                                 .message = std::move(message)});
}
