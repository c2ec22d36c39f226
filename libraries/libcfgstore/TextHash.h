// TextHash.h -- hashes of texts that come from a file.
//
// Whoever writes a file must not be able to choose names, values or DNs that all fall into one slot of a hash table, as
// is easy with the hash of the standard library: each lookup would then look at all of them. So the hash is
// SipHash-1-3, which is made for this, with a key that is drawn anew for each process.

#ifndef CFGMIG_LIBCFGSTORE_TEXTHASH_H
#define CFGMIG_LIBCFGSTORE_TEXTHASH_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace cfgstore {

using HashKey = std::array<std::uint64_t, 2>;

// SipHash with one round for each eight bytes and three at the end.
std::uint64_t sipHash13(const HashKey& key, std::string_view text);

// With the key of this process.
std::size_t hashOfText(std::string_view text);

// For the containers of the standard library.
struct TextHash {
  std::size_t operator()(std::string_view text) const { return hashOfText(text); }
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_TEXTHASH_H
