// PlantedSecrets.h -- recognisable secrets for configurations, and a search for them.

#ifndef CFGMIG_TESTS_TOOL_PLANTEDSECRETS_H
#define CFGMIG_TESTS_TOOL_PLANTEDSECRETS_H

#include <string>
#include <vector>

namespace planted {

// In all that is planted. No name and no ordinary value of a configuration contains it.
inline constexpr char kSecret[] = "Pl4nted-S3cret";

// Lines of an entry: one for each attribute of passwords and keys that servers have, as text and in base64, and one for
// each form in which an ordinary value holds a secret.
std::vector<std::string> secretLines();

// `content`, an LDIF file without folded passwords, with the value of every password in it replaced by a secret of its
// own and with all the lines above at the end of every entry.
std::string withSecrets(const std::string& content);

// Where in `text` a planted secret begins, whole or in part, as it is, in base64, in hexadecimal, in any letter case;
// npos if nowhere.
std::string::size_type findSecret(const std::string& text);

}  // namespace planted

#endif  // CFGMIG_TESTS_TOOL_PLANTEDSECRETS_H
