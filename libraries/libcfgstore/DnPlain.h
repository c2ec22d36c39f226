// DnPlain.h -- the short way for the RDNs that nearly all DNs consist of: one attribute type by name, and a value of
// printable ASCII in which nothing is escaped or quoted. Gives what appendNormalPair gives for the same text, without
// allocating memory.

#ifndef CFGMIG_LIBCFGSTORE_DNPLAIN_H
#define CFGMIG_LIBCFGSTORE_DNPLAIN_H

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace cfgstore {

struct PlainRdn {
  std::size_t read;     // bytes of the text before the separator or the end
  std::size_t written;  // bytes of the normal form
};

// Reads the first RDN of `text` and writes its normal form to `out`. Nothing when the RDN is not plain, is no RDN at
// all, or does not fit; `out` then holds something undefined.
std::optional<PlainRdn> readPlainRdn(std::string_view text, std::span<char> out);

// Appends the normal form of one attribute-value pair that is plain but for characters beyond ASCII in its value: names
// of people and places, mostly. False when it is not; `out` is then as it was.
bool appendPlainPair(std::string_view text, std::string& out);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_DNPLAIN_H
