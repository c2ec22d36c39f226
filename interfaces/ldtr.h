// ldtr.h -- the trace facility that libcfgmig reports to.
//
// The library prints nothing and returns bare integers; everything it has to say goes through the four functions
// and the event mask below. A product links either the facility of this project (libraries/libldtr) or its own.
//
// What holds for all of them: nothing is returned that the library tests, no operation throws, strings and
// arguments are only valid during the call, and the library calls them from the thread that called the library.

#ifndef CFGMIG_INTERFACES_LDTR_H
#define CFGMIG_INTERFACES_LDTR_H

#include <cstdint>

// The event mask. The facility owns it; the library only reads it, afresh at every point where it might write a
// record, so that it may be changed at any time, also while a method runs. Bits that the library knows:
//
//   0x1000       entry records of public methods
//   0x3000       exit records of public methods (either bit)
//   0x10000      entry records of internal methods
//   0x30000      exit records of internal methods (either bit)
//   0x4000000    debug messages
extern std::uint32_t trcEvents;

// Writes an entry record. `record` is 0x3200000 for a public and 0x32a0000 for an internal method, `identifier`
// the method's trace identifier (0x5101NN00), `data` null.
void ldtr_write(unsigned long record, unsigned long identifier, const void* data);

// Writes an exit record. `exitClass` and `event` are 33 and 0x1000 for a public, 43 and 0x10000 for an internal
// method; `result` is the value that the method reports, `data` null.
void ldtr_exit_errcode(unsigned long identifier, unsigned long exitClass, unsigned long event, long result,
                       const void* data);

// Writes the debug messages of one traced method. Built on the spot for each message, and only when the debug bit
// of the mask is set. The library builds it with the method's identifier, the record word 0x3400000 and null.
class ldtr_formater_local {
 public:
  // Keeps the three for the messages to come.
  ldtr_formater_local(unsigned long identifier, unsigned long record, const void* data)
      : m_identifier(identifier), m_record(record), m_data(data) {}

  // Writes one message: `format` and its arguments as printf takes them, `messageClass` the message class word.
  // The format carries its own newline.
  void debug(unsigned long messageClass, const char* format, ...) __attribute__((format(printf, 3, 4)));

  // What it was built with.
  unsigned long identifier() const { return m_identifier; }
  unsigned long record() const { return m_record; }
  const void* data() const { return m_data; }

 private:
  unsigned long m_identifier;
  unsigned long m_record;
  const void* m_data;
};

// The same for code that has no trace identifier. The library builds it with the record word 0x3400000.
class ldtr_formater_global {
 public:
  // Keeps the record word for the messages to come.
  explicit ldtr_formater_global(unsigned long record) : m_record(record) {}

  // As that of ldtr_formater_local.
  void debug(unsigned long messageClass, const char* format, ...) __attribute__((format(printf, 3, 4)));

  // What it was built with.
  unsigned long record() const { return m_record; }

 private:
  unsigned long m_record;
};

#endif  // CFGMIG_INTERFACES_LDTR_H
