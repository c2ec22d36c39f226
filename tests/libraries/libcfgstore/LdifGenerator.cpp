#include "LdifGenerator.h"

#include <algorithm>
#include <ostream>

#include "Base64.h"

namespace cfgstore::test {
namespace {

bool canBePlain(const std::string& value) {
  if (value.empty()) return true;
  if (value.front() == ' ' || value.front() == ':' || value.front() == '<') return false;
  return value.find_first_of("\n\r") == std::string::npos;
}

// Writes a file piece by piece, drawing the spelling of each.
class Writer {
 public:
  std::string text;

  void named(const std::string& name, const std::string& value) {
    std::string line = drawn(20) ? upper(name) : name;
    line += ':';
    if (!canBePlain(value) || drawn(15)) {
      line += ':' + blanks(0);
      appendBase64(line, value);
    } else {
      line += blanks(0) + value;
    }
    physical(line);
  }
  void comment() { physical(*rc::gen::elementOf(std::vector<std::string>{"#", "# a: b", "# dn: CN=X", "#\xFF"})); }
  void blankLines(int least) {
    const int count = *rc::gen::inRange(least, least + 3);
    for (int i = 0; i < count; ++i) text += lineEnd();
  }
  void maybeComment() {
    if (drawn(15)) comment();
  }

 private:
  static bool drawn(int percent) { return *rc::gen::inRange(0, 100) < percent; }
  static std::string upper(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    return name;
  }
  static std::string blanks(int least) {
    return std::string(static_cast<std::size_t>(*rc::gen::inRange(least, 3)), ' ');
  }
  static std::string lineEnd() { return drawn(30) ? "\r\n" : "\n"; }

  void physical(const std::string& line) {
    for (std::size_t i = 0; i < line.size(); ++i) {
      if (i > 0 && drawn(4)) text += lineEnd() + " ";
      text += line[i];
    }
    text += lineEnd();
  }
};

}  // namespace

void showValue(const GeneratedLdif& file, std::ostream& out) { rc::show(file.text, out); }

rc::Gen<std::string> genValue() {
  const auto byte = rc::gen::weightedOneOf<char>(
      {{10, rc::gen::inRange<char>('a', 'e')},
       {3, rc::gen::elementOf(std::vector<char>{' ', ':', '<', '#', '=', ',', '\t', '\n', '\r'})},
       {1, rc::gen::nonZero<char>()}});
  return rc::gen::container<std::string>(byte);
}

rc::Gen<GeneratedLdif> genLdif() {
  return rc::gen::exec([] {
    GeneratedLdif file;
    Writer writer;
    if (*rc::gen::arbitrary<bool>()) {
      writer.maybeComment();
      writer.named("version", "1");
      writer.blankLines(0);
    }
    const int entries = *rc::gen::inRange(0, 6);
    for (int i = 0; i < entries; ++i) {
      writer.maybeComment();
      if (i > 0 || *rc::gen::arbitrary<bool>()) writer.blankLines(1);
      const std::string number = std::to_string(i);
      writer.maybeComment();
      const std::vector<std::string> spellings{"CN=E" + number + ",CN=CONFIGURATION",
                                               "cn=e" + number + " , cn=Configuration"};
      writer.named("dn", *rc::gen::elementOf(spellings));
      auto& attributes = file.content["CN=E" + number + ",CN=CONFIGURATION"];
      const int lines = *rc::gen::inRange(0, 8);
      for (int line = 0; line < lines; ++line) {
        writer.maybeComment();
        const std::string name(1, *rc::gen::inRange<char>('a', 'e'));
        const std::string value = *genValue();
        writer.named(name, value);
        auto& values = attributes[name];
        if (std::find(values.begin(), values.end(), value) == values.end()) values.push_back(value);
      }
      writer.maybeComment();
    }
    if (*rc::gen::arbitrary<bool>()) {
      writer.blankLines(0);
    } else if (writer.text.ends_with("\r\n")) {
      writer.text.resize(writer.text.size() - 2);
    } else if (writer.text.ends_with('\n')) {
      writer.text.pop_back();
    }
    file.text = writer.text;
    return file;
  });
}

}  // namespace cfgstore::test
