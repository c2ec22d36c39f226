// JsonWriter.h -- writes JSON piece by piece, so that a document never stands in memory as a whole.

#ifndef CFGMIG_TOOL_REPORT_JSONWRITER_H
#define CFGMIG_TOOL_REPORT_JSONWRITER_H

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

#include "JsonText.h"

namespace tool {

// The caller sees to it that each key is followed by one value, and that what is begun is ended. Only ASCII is written.
// Each element of a list stands on a line of its own, unless the list is told to stand on one.
class JsonWriter {
 public:
  explicit JsonWriter(std::ostream& out) : m_out(out) { m_buffer.reserve(kFull + kFull / 4); }
  ~JsonWriter() { flush(); }
  JsonWriter(const JsonWriter&) = delete;
  JsonWriter& operator=(const JsonWriter&) = delete;

  JsonWriter& beginObject() { return begin('{'); }
  JsonWriter& endObject() { return end('}'); }
  JsonWriter& beginList() { return begin('['); }
  JsonWriter& endList() { return end(']'); }

  // `name` is one of ours: ASCII without anything to escape.
  JsonWriter& key(const char* name) {
    separate();
    m_buffer.append("\"").append(name).append("\": ");
    m_first = true;
    return *this;
  }
  // A string; text that is not UTF-8 is the object {"base64": "..."}.
  JsonWriter& text(std::string_view value) {
    separate();
    if (isPlain(value)) {
      m_buffer.append("\"").append(value).append("\"");
    } else {
      appendJsonText(m_buffer, value);
    }
    return *this;
  }
  JsonWriter& number(std::uint64_t value) { return literal(std::to_string(value)); }
  JsonWriter& signedNumber(std::int64_t value) { return literal(std::to_string(value)); }
  JsonWriter& boolean(bool value) { return literal(value ? "true" : "false"); }
  JsonWriter& null() { return literal("null"); }

  // Ends the line after the next comma, so that what follows begins a new one.
  JsonWriter& newLine() {
    m_newLine = true;
    return *this;
  }

 private:
  static constexpr std::size_t kFull = 1U << 16U;

  static bool isPlain(std::string_view text) {
    for (const char character : text) {
      if (character < ' ' || character > '~' || character == '"' || character == '\\') return false;
    }
    return true;
  }
  void flush() {
    m_out.write(m_buffer.data(), static_cast<std::streamsize>(m_buffer.size()));
    m_buffer.clear();
  }
  void separate() {
    if (m_buffer.size() >= kFull) flush();
    if (!m_first) m_buffer += m_newLine ? "," : ", ";
    if (m_newLine) m_buffer += '\n';
    m_newLine = false;
    m_first = false;
  }
  JsonWriter& begin(char bracket) {
    separate();
    m_buffer += bracket;
    m_first = true;
    return *this;
  }
  JsonWriter& end(char bracket) {
    m_buffer += bracket;
    m_first = false;
    m_newLine = false;
    return *this;
  }
  JsonWriter& literal(std::string_view text) {
    separate();
    m_buffer += text;
    return *this;
  }

  std::ostream& m_out;
  std::string m_buffer;
  bool m_first = true;  // nothing to separate from
  bool m_newLine = false;
};

}  // namespace tool

#endif  // CFGMIG_TOOL_REPORT_JSONWRITER_H
