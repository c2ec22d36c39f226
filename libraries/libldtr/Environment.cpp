#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>

#include "PrintableText.h"
#include "TraceControl.h"

namespace ldtr {
namespace {

// The variable's text, empty when it is absent or the program runs with more rights than its user: such a program
// must not be made to write to a file of the user's choice.
std::string variable(const char* name) {
  const char* text = ::secure_getenv(name);
  return text ? text : "";
}

}  // namespace

std::optional<std::uint32_t> parseEvents(std::string_view text) {
  int base = 10;
  if (text.starts_with("0x") || text.starts_with("0X")) {
    text.remove_prefix(2);
    base = 16;
  }
  std::uint32_t mask = 0;
  const char* end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, mask, base);
  if (error != std::errc() || stopped != end) return std::nullopt;
  return mask;
}

std::string setUpFromEnvironment() {
  const std::string eventsText = variable("LDTR_EVENTS");
  std::string file = variable("LDTR_FILE");
  if (eventsText.empty() && file.empty()) return "";

  std::uint32_t mask = kEverything;
  if (!eventsText.empty()) {
    const auto given = parseEvents(eventsText);
    if (!given) return "LDTR_EVENTS is not a mask of 32 bits, decimal or hexadecimal with 0x: " + printable(eventsText);
    mask = *given;
  }
  if (file.empty()) file = "-";
  if (!writeTextTo(file, mask)) {
    return "LDTR_FILE cannot be opened: " + printable(file) + ": " + std::strerror(errno);
  }
  setEvents(mask);
  return "";
}

}  // namespace ldtr
