// Secrets.h -- which values are not shown unless somebody asks for them.

#ifndef CFGMIG_TOOL_SECRETS_H
#define CFGMIG_TOOL_SECRETS_H

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace tool {

// What the name of an attribute says of its values: that they are secrets, that they are none, or nothing.
enum class NameSays { secret, open, nothing };
NameSays nameSays(std::string_view attribute);

// The same for whoever asks for many values: there are few names, and each is looked at once.
class SecretNames {
 public:
  NameSays says(std::string_view attribute);
  bool isSecret(std::string_view attribute, std::string_view value);

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view name) const { return std::hash<std::string_view>()(name); }
  };
  std::unordered_map<std::string, NameSays, Hash, std::equal_to<>> m_known;
};

// Whether a value looks like a secret by itself.
bool looksSecret(std::string_view value);

// Both together. True when the attribute holds passwords or keys, or the value seems to hold one: a password in the
// arguments of a plug-in, in an environment setting, in a URL, one that is hashed or sealed. Rather too often than too
// seldom.
bool isSecret(std::string_view attribute, std::string_view value);

// The same where it is known what the name says.
inline bool isSecret(NameSays name, std::string_view value) {
  return name == NameSays::secret || (name == NameSays::nothing && looksSecret(value));
}

}  // namespace tool

#endif  // CFGMIG_TOOL_SECRETS_H
