// EntryPlacement.cpp -- where in the file a new entry goes: as near as can be to its relatives.

#include "Document.h"
#include "NormalDn.h"

namespace cfgstore {
namespace {

// A DN may have any number of RDNs; no tree is deeper than this.
constexpr int kMostLevels = 100;

}  // namespace

// In this order: after the parent and all that follows it of its subtree; after the last sibling and what follows it
// of the sibling's subtree; after the nearest ancestor that there is, in the same way; at the end of the file.
EntryId Document::placeFor(std::string_view normal) {
  std::string_view ancestor = parentOfNormalDn(normal);
  if (const EntryId parent = lookUp(ancestor); parent != kNoEntry) return endOfSubtree(parent);
  if (const EntryId sibling = lastChildOf(ancestor); sibling != kNoEntry) return endOfSubtree(sibling);
  for (int level = 0; level < kMostLevels && !ancestor.empty();) {
    ancestor = parentOfNormalDn(ancestor);
    if (ancestor.empty() || ancestor.size() > m_longestNormal) continue;  // too long to be one of the entries
    ++level;
    if (const EntryId found = lookUp(ancestor); found != kNoEntry) return endOfSubtree(found);
  }
  return m_last;
}

// The last of the entries that follow `id` without a gap and are below it. The search goes on where the last one for
// the same entry ended, so that adding many entries below one parent does not look at each of its children each time.
EntryId Document::endOfSubtree(EntryId id) {
  EntryId end = m_entries[id].subtreeEnd == kNoEntry ? id : m_entries[id].subtreeEnd;
  const std::string_view base = m_entries[id].normal;
  for (EntryId next = m_entries[end].next; next != kNoEntry; next = m_entries[next].next) {
    if (!isWithinNormalDn(m_entries[next].normal, base)) break;
    end = next;
  }
  m_entries[id].subtreeEnd = end;
  return end;
}

// Removed entries count: where one stood is as good a place.
EntryId Document::lastChildOf(std::string_view normalParent) {
  if (!m_lastChild) {
    std::unordered_map<std::string_view, EntryId, TextHash> lastChild;
    for (EntryId id = m_entries[kHead].next; id != kNoEntry; id = m_entries[id].next) {
      if (!m_entries[id].normal.empty()) lastChild[parentOfNormalDn(m_entries[id].normal)] = id;
    }
    m_lastChild = std::move(lastChild);
  }
  const auto found = m_lastChild->find(normalParent);
  return found == m_lastChild->end() ? kNoEntry : found->second;
}

// Links a new entry into the file. It takes over what followed the entry above it: comments that stand between two
// entries speak of the entries below them more often than of those above.
void Document::link(EntryId id, EntryId after) {
  Entry& entry = m_entries[id];
  Entry& above = m_entries[after];
  entry.previous = after;
  entry.next = above.next;
  above.next = id;
  if (entry.next == kNoEntry) {
    m_last = id;
  } else {
    m_entries[entry.next].previous = id;
  }
  if (after != kHead) {
    entry.gap = above.gap;
    above.gap = {};
  }
  if (m_lastChild) (*m_lastChild)[parentOfNormalDn(entry.normal)] = id;
  if (entry.normal.size() > m_longestNormal) m_longestNormal = entry.normal.size();
}

// How the entry writes an attribute's name, so that a new entry below it looks the same.
std::string Document::spellingNear(EntryId id, std::string_view name, std::string_view usual) {
  if (id == kHead || m_entries[id].removed) return std::string(usual);
  const EntryLines& lines = linesOf(id);
  const EntryLines::Attribute attribute = lines.find(name);
  return attribute == EntryLines::kNone ? std::string(usual) : lines.nameAsWritten(attribute);
}

}  // namespace cfgstore
