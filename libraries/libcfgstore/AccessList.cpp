#include "AccessList.h"

#include <cstdint>
#include <optional>
#include <vector>

#include "FileError.h"

namespace cfgstore {
namespace {

// Four bytes of version, then entries of eight: tag, permissions, user or group; all with the lowest byte first.
constexpr std::uint32_t kVersion = 2;
constexpr std::size_t kHeaderSize = 4;
constexpr std::size_t kEntrySize = 8;

enum class Tag : std::uint16_t {
  owner = 0x01,
  user = 0x02,
  owningGroup = 0x04,
  group = 0x08,
  mask = 0x10,
  other = 0x20
};

struct Entry {
  Tag tag;
  mode_t permissions;
  std::uint32_t id;
};

std::uint32_t numberAt(std::string_view bytes, std::size_t at, std::size_t size) {
  std::uint32_t number = 0;
  for (std::size_t i = size; i-- > 0;) number = number << 8 | static_cast<unsigned char>(bytes[at + i]);
  return number;
}

void append(std::string& bytes, std::uint32_t number, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) bytes += static_cast<char>(number >> 8 * i & 0xff);
}

std::optional<std::vector<Entry>> parse(std::string_view list) {
  if (list.size() < kHeaderSize || (list.size() - kHeaderSize) % kEntrySize != 0) return std::nullopt;
  if (numberAt(list, 0, kHeaderSize) != kVersion) return std::nullopt;
  std::vector<Entry> entries;
  for (std::size_t at = kHeaderSize; at < list.size(); at += kEntrySize) {
    const Entry entry{static_cast<Tag>(numberAt(list, at, 2)), numberAt(list, at + 2, 2), numberAt(list, at + 4, 4)};
    switch (entry.tag) {
      case Tag::owner:
      case Tag::user:
      case Tag::owningGroup:
      case Tag::group:
      case Tag::mask:
      case Tag::other:
        break;
      default:
        return std::nullopt;
    }
    if ((entry.permissions & ~mode_t{07}) != 0) return std::nullopt;
    entries.push_back(entry);
  }
  return entries;
}

std::vector<Entry> understood(std::string_view list) {
  auto entries = parse(list);
  if (!entries) throw FileError("its access control list is not understood");
  return std::move(*entries);
}

// What the mask leaves of everybody but the owner and the others.
mode_t maskOf(const std::vector<Entry>& entries) {
  for (const Entry& entry : entries) {
    if (entry.tag == Tag::mask) return entry.permissions;
  }
  return 07;
}

}  // namespace

mode_t plainMode(mode_t mode, std::string_view accessList) {
  if (accessList.empty()) return mode;
  const auto entries = parse(accessList);
  if (!entries) return mode & ~mode_t{077};
  const mode_t mask = maskOf(*entries);
  mode_t group = 07;
  mode_t other = mode & 07;
  for (const Entry& entry : *entries) {
    // A user that is named gets what the entry says although the group or everybody may do more; so does the member
    // of a group that is named, but not if it is in the owning group too.
    if (entry.tag == Tag::owningGroup || entry.tag == Tag::user) group &= entry.permissions & mask;
    if (entry.tag == Tag::group || entry.tag == Tag::user) other &= entry.permissions & mask;
  }
  return (mode & ~mode_t{077}) | group << 3 | other;
}

std::string limitedList(std::string_view accessList, mode_t permissions) {
  const mode_t owner = permissions >> 6 & 07;
  const mode_t group = permissions >> 3 & 07;
  const mode_t other = permissions & 07;
  std::string limited;
  append(limited, kVersion, kHeaderSize);
  for (const Entry& entry : understood(accessList)) {
    mode_t most = group & other;
    if (entry.tag == Tag::owner) most = owner;
    if (entry.tag == Tag::owningGroup || entry.tag == Tag::mask) most = group;
    if (entry.tag == Tag::other) most = other;
    append(limited, static_cast<std::uint32_t>(entry.tag), 2);
    append(limited, entry.permissions & most, 2);
    append(limited, entry.id, 4);
  }
  return limited;
}

mode_t modeOfList(std::string_view accessList) {
  mode_t mode = 0;
  mode_t group = 0;
  bool hasMask = false;
  for (const Entry& entry : understood(accessList)) {
    if (entry.tag == Tag::owner) mode |= entry.permissions << 6;
    if (entry.tag == Tag::other) mode |= entry.permissions;
    if (entry.tag == Tag::owningGroup && !hasMask) group = entry.permissions;
    if (entry.tag == Tag::mask) {
      group = entry.permissions;
      hasMask = true;
    }
  }
  return mode | group << 3;
}

}  // namespace cfgstore
