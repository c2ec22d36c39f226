// OwnTrace.cpp -- a product's own trace facility: one line a record on standard error, each method by its number.

#include <ldtr.h>

#include <cstdarg>
#include <cstdio>

std::uint32_t trcEvents = 0;  // nothing is traced until the program asks for it

void ldtr_write(unsigned long, unsigned long identifier, const void*) { std::fprintf(stderr, "> %lx\n", identifier); }

void ldtr_exit_errcode(unsigned long identifier, unsigned long, unsigned long, long result, const void*) {
  std::fprintf(stderr, "< %lx %ld\n", identifier, result);
}

void ldtr_formater_local::debug(unsigned long, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::vfprintf(stderr, format, arguments);
  va_end(arguments);
}

void ldtr_formater_global::debug(unsigned long, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::vfprintf(stderr, format, arguments);
  va_end(arguments);
}
