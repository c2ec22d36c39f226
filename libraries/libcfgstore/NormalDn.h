// NormalDn.h -- the normal form of distinguished names, the one place that knows when two DNs are the same.
//
// What is read: DNs as RFC 4514 writes them, and what older servers write besides: blanks around `,` `+` and `=`,
// `;` between RDNs, values in double quotes, attribute types as OIDs with or without "OID.", underscores in attribute
// types.
//
// What is written, always in the same way:
//
//   Types     Upper-case. OIDs of the usual naming attributes become their names ("2.5.4.3" is CN); the others stay
//             OIDs. Other names of an attribute are not known: COMMONNAME and CN are two types.
//   Values    Prepared for comparison as RFC 4518 does it for caseIgnoreMatch. Controls, soft hyphens and the like are
//             dropped, tabs, line ends and all Unicode blanks become blanks, then NFKC and case folding until nothing
//             changes any more; then upper-case, unless a letter has no capital that would fold back to it, in which
//             case only the ASCII letters of the value are. Characters that RFC 4518 prohibits (private use,
//             unassigned) are kept.
//   Blanks    Leading and trailing ones are dropped, escaped or quoted or not: they are insignificant for this
//             matching rule, so "CN=\ A" and "CN=A" are one DN. Runs inside become one blank. A blank that carries a
//             combining mark is a character like any other.
//   Escapes   Only what has to be: `\,` `\+` `\"` `\\` `\<` `\>` `\;` anywhere, `\#` and `\ ` at the beginning.
//   #hex      The BER encoding of a directory string (UTF-8, printable, IA5, numeric, visible, BMP, universal, or
//             ASCII in a teletex string) is that string. Anything else stays as `#` and upper-case digits.
//   Octets    A value that is not UTF-8 is compared byte by byte, but for ASCII letter case and blanks; in the normal
//             form all its bytes outside printable ASCII are written as `\XX`.
//   RDNs      `,` between them. An RDN is a set: its attribute-value pairs are sorted by their normal text, and a pair
//             that occurs twice counts once.
//
// What is no DN: a part without `=`, an empty or misspelt type, a type with options, an unknown escape, unescaped
// `"` `<` `>` inside a value, text after a closing quote, a separator with nothing before or after it, a null byte
// (but not its escape `\00`), and text that is nothing but blanks.
//
// Time and memory are linear in the length of the text, but for the sorting of the pairs of one RDN and of the marks on
// one character, which take n log n. Nothing here
// keeps state; all functions may be called from several threads. They throw std::bad_alloc and nothing else.

#ifndef CFGMIG_LIBCFGSTORE_NORMALDN_H
#define CFGMIG_LIBCFGSTORE_NORMALDN_H

#include <optional>
#include <string>
#include <string_view>

namespace cfgstore {

// The normal form of `dn`: upper-case, no optional blanks, runs of blanks inside values collapsed, attribute-value
// pairs of a multi-valued RDN in a fixed order, as in "CN=FRONT END,CN=CONFIGURATION". Two DNs name the same entry
// exactly when their normal forms are equal, and a normal form is its own normal form. Empty for the empty DN,
// nothing when `dn` is not a DN.
std::optional<std::string> normalDn(std::string_view dn);

// True when both are DNs and their normal forms are equal. Reads no further than the first RDN that differs and does
// not allocate memory for plain ones.
bool sameDn(std::string_view left, std::string_view right);

// The normal form of the parent: what follows the first RDN. Empty for a top entry. `normal` must be a normal form;
// the result points into it.
std::string_view parentOfNormalDn(std::string_view normal);

// True when `normal` is below `normalBase` at any depth, or is `normalBase` itself. Everything is below the empty DN.
// Both must be normal forms.
bool isWithinNormalDn(std::string_view normal, std::string_view normalBase);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_NORMALDN_H
