// TraceControl.h -- how a product sets up the trace facility: which events are recorded and where they go.
//
// Nothing is recorded and nothing is written until a program asks for it here or the user does in the environment
// (LDTR_EVENTS, the mask in hexadecimal or decimal; LDTR_FILE, a path, or "-" for standard error), which takes
// effect with setUpFromEnvironment. What the library hands to the trace facility holds no attribute values.
//
// The facility writes every record that it is handed. Whether there is one to hand over is decided by the caller's
// test of trcEvents, so that a mask of 0 costs a traced method one branch at each trace point.
//
// No function here or in ldtr.h lets a failure out: a record that cannot be written is given up, errno stays as it
// was, and what a sink throws goes no further. Records may come from several threads at once; a sink function must
// then be ready to be called from each of them. A sink may itself change the sinks.

#ifndef CFGMIG_LIBLDTR_TRACECONTROL_H
#define CFGMIG_LIBLDTR_TRACECONTROL_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace ldtr {

// The bits of the event mask: entry and exit records of public methods, those of internal methods, debug messages.
inline constexpr std::uint32_t kPublicEntry = 0x1000;
inline constexpr std::uint32_t kPublicExit = 0x2000;
inline constexpr std::uint32_t kInternalEntry = 0x10000;
inline constexpr std::uint32_t kInternalExit = 0x20000;
inline constexpr std::uint32_t kDebug = 0x4000000;
inline constexpr std::uint32_t kEverything = 0xffffffff;

// A method was entered, a method ended, a method has something to say.
enum class RecordKind { entry, exit, debug };

// One trace record. Valid during the call of the sink only.
struct Record {
  RecordKind kind = RecordKind::debug;
  std::uint32_t events = kDebug;   // the mask bits of which any one asks for a record like this; an exit record is
                                   // asked for by the bit of the entry record, too
  unsigned long identifier = 0;    // of the method; 0 for a debug message without one
  std::string_view method;         // its name ("removeCLInfo|editCLInfo" where two share an identifier), or the
                                   // identifier in hexadecimal when it is not known; empty when identifier is 0
  long result = 0;                 // exit records
  unsigned long messageClass = 0;  // debug records
  std::string_view message;        // debug records, as formatted, its newline included
};

// Takes a record. Called from each thread that traces, also from several at once.
using Sink = std::function<void(const Record&)>;

// Sets trcEvents, and reads it.
void setEvents(std::uint32_t mask);
std::uint32_t events();

// The mask that `text` writes, "67108864" or "0x4000000"; nothing when it is not a number of 32 bits.
std::optional<std::uint32_t> parseEvents(std::string_view text);

// Where records go from now on: nowhere, to a file, or to a function. The sink that was there before is closed.
void discard();  // nowhere, the state at the start; ends sendAlsoTo as well

// One line a record, in a single write, appended to the file at `path`; "-" is standard error. A file that does not
// exist is created for its owner alone. Of the records handed over only those that `mask` asks for are written, so
// that a program can enable more for a function of its own.
// False, with errno set and the sinks unchanged, when the file cannot be opened.
bool writeTextTo(const std::string& path, std::uint32_t mask = kEverything);

// Whether records could not be written to the text sink that is set up: the errno of the first one that was given up,
// 0 when none was or there is no text sink.
int textError();

void sendTo(Sink sink);      // to a function
void sendAlsoTo(Sink sink);  // to a function besides the sink above; an empty function ends it

// Applies LDTR_EVENTS and LDTR_FILE; an empty variable counts as absent. LDTR_EVENTS alone writes to standard error,
// LDTR_FILE alone records everything; without both nothing changes. A program that runs with more rights than its
// user ignores both.
// Returns an empty string, or what is wrong with them (and then applies neither).
std::string setUpFromEnvironment();

// The line that the text sink writes for a record, without a line end:
//   entry getDns
//   exit  getDns result=0
//   debug mergeIn60 mergeIn60: delValue for zor-slapdPort has returned rc=53
//   debug (no method) ConfigFile::freeParamVals passed a null pointer.
// The newline that closes a message is left out; the rest of it is in printable form, so that a record is always one
// line.
std::string textLine(const Record& record);

// The name of the method with this trace identifier, or null.
const char* methodName(unsigned long identifier);

}  // namespace ldtr

#endif  // CFGMIG_LIBLDTR_TRACECONTROL_H
