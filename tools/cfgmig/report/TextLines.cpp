#include "report/TextLines.h"

#include <algorithm>

namespace tool {

std::size_t columnsOf(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(
      text.begin(), text.end(), [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; }));
}

std::vector<std::string> wrapped(std::string_view head, std::string_view text, std::size_t width) {
  std::vector<std::string> words;
  while (true) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    if (text.empty()) return wrapped(head, words, width);
    words.emplace_back(text.substr(0, text.find(' ')));
    text.remove_prefix(words.back().size());
  }
}

std::vector<std::string> wrapped(std::string_view head, const std::vector<std::string>& words, std::size_t width) {
  const std::size_t indent = columnsOf(head);
  std::vector<std::string> lines{std::string(head)};
  std::size_t columns = indent;
  bool isFirst = true;
  for (const std::string& word : words) {
    const std::size_t wide = columnsOf(word);
    if (!isFirst && columns + 1 + wide > width) {
      lines.emplace_back(indent, ' ');
      columns = indent;
      isFirst = true;
    }
    if (!isFirst) {
      lines.back() += ' ';
      ++columns;
    }
    lines.back() += word;
    columns += wide;
    isFirst = false;
  }
  return lines;
}

}  // namespace tool
