// Secrets.h -- which values are not shown unless somebody asks for them.

#ifndef CFGMIG_TOOL_SECRETS_H
#define CFGMIG_TOOL_SECRETS_H

#include <string_view>

namespace tool {

// What the name of an attribute says of its values: that they are secrets, that they are none, or nothing.
enum class NameSays { secret, open, nothing };
NameSays nameSays(std::string_view attribute);

// Whether a value looks like a secret by itself.
bool looksSecret(std::string_view value);

// Both together. True when the attribute holds passwords or keys, or the value seems to hold one: a password in the
// arguments of a plug-in, in an environment setting, in a URL, one that is hashed or sealed. Rather too often than too
// seldom.
bool isSecret(std::string_view attribute, std::string_view value);

}  // namespace tool

#endif  // CFGMIG_TOOL_SECRETS_H
