#include "TextHash.h"

#include <sys/random.h>

#include <bit>
#include <cstring>
#include <ctime>

namespace cfgstore {
namespace {

struct State {
  std::uint64_t a, b, c, d;

  void round() {
    a += b;
    c += d;
    b = std::rotl(b, 13) ^ a;
    d = std::rotl(d, 16) ^ c;
    a = std::rotl(a, 32);
    c += b;
    a += d;
    b = std::rotl(b, 17) ^ c;
    d = std::rotl(d, 21) ^ a;
    c = std::rotl(c, 32);
  }

  void add(std::uint64_t word) {
    d ^= word;
    round();
    a ^= word;
  }
};

// Up to eight bytes as a number, the first one lowest.
std::uint64_t wordOf(const char* bytes, std::size_t count) {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, count);
  if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
  return word;
}

HashKey drawKey() {
  HashKey key{};
  if (::getrandom(key.data(), sizeof key, GRND_NONBLOCK) != static_cast<ssize_t>(sizeof key)) {
    // Early in the life of a machine. The time is less than random, but nobody can have put it into a file.
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    key = {static_cast<std::uint64_t>(now.tv_nsec), static_cast<std::uint64_t>(now.tv_sec)};
  }
  return key;
}

}  // namespace

std::uint64_t sipHash13(const HashKey& key, std::string_view text) {
  State state{key[0] ^ 0x736f6d6570736575, key[1] ^ 0x646f72616e646f6d, key[0] ^ 0x6c7967656e657261,
              key[1] ^ 0x7465646279746573};
  const std::uint64_t size = text.size();
  for (; text.size() >= 8; text.remove_prefix(8)) state.add(wordOf(text.data(), 8));
  state.add(size << 56 | (text.empty() ? 0 : wordOf(text.data(), text.size())));
  state.c ^= 0xff;
  for (int i = 0; i < 3; ++i) state.round();
  return state.a ^ state.b ^ state.c ^ state.d;
}

std::size_t hashOfText(std::string_view text) {
  static const HashKey key = drawKey();
  return sipHash13(key, text);
}

}  // namespace cfgstore
