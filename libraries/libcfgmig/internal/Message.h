// Message.h -- a debug message: its text, with the conversions checked against the arguments when compiled.

#ifndef CFGMIG_LIBCFGMIG_INTERNAL_MESSAGE_H
#define CFGMIG_LIBCFGMIG_INTERNAL_MESSAGE_H

#include <array>
#include <cstddef>

namespace cfgmig {

// The conversion that an argument of a type needs: %s for strings, %d for numbers. There are no others.
template <class Argument>
struct Conversion;
template <>
struct Conversion<const char*> {
  static constexpr char letter = 's';
};
template <>
struct Conversion<int> {
  static constexpr char letter = 'd';
};

template <class... Args>
class Message {
 public:
  // Does not compile when the conversions of `text` are not those of Args, in their order.
  consteval Message(const char* text) : m_text(text) {
    constexpr std::array<char, sizeof...(Args) + 1> expected{Conversion<Args>::letter..., '\0'};
    std::size_t found = 0;
    for (const char* c = text; *c != '\0'; ++c) {
      if (*c != '%') continue;
      ++c;
      if (found == sizeof...(Args) || *c != expected[found]) throw "the conversions do not match the arguments";
      ++found;
    }
    if (found != sizeof...(Args)) throw "the text has fewer conversions than the message has arguments";
  }

  constexpr const char* text() const { return m_text; }

 private:
  const char* m_text;
};

using PlainMessage = Message<>;
using RcMessage = Message<int>;                         // the store's code
using IndexedRcMessage = Message<int, int>;             // the store's code, the index in a value list
using AttributeMessage = Message<const char*, int>;     // the attribute, the store's code
using IndexedMessage = Message<const char*, int, int>;  // the attribute, the store's code, the index

}  // namespace cfgmig

#endif  // CFGMIG_LIBCFGMIG_INTERNAL_MESSAGE_H
