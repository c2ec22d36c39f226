// EntryLines.h -- the lines of one entry, found by attribute and by value.
//
// Every operation takes time in proportion to what it reads or changes, also in an entry with a hundred thousand
// attributes or values: lines are linked, not moved, and what is large gets a hash table.

#ifndef CFGMIG_LIBCFGSTORE_ENTRYLINES_H
#define CFGMIG_LIBCFGSTORE_ENTRYLINES_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Line.h"

namespace cfgstore {

// Invariants:
//   1. Following `next` from `m_first` gives the lines of the entry in order.
//   2. Following `nextValue` from an attribute's `first` gives its lines in the same order. An attribute that has lost
//      all of its lines keeps its place in the table, with a count of 0, and counts as absent.
//   3. The dn line is there, and is never removed.
// Attributes are referred to by their position in the table. Views of lines and values are views into the document.
class EntryLines {
 public:
  using Attribute = std::uint32_t;
  static constexpr Attribute kNone = 0xffffffff;

  // Takes the lines of an entry, in place of those it has.
  void assign(std::span<const Line> lines);

  // The attribute called `name`, or kNone if the entry has none of that name.
  Attribute find(std::string_view name) const;

  // Calls `visit` with the attribute's values, in order and each of them once, however often the file has it.
  void visitValues(Attribute attribute, const std::function<void(std::string_view)>& visit) const;
  std::string firstValue(Attribute attribute) const;
  bool hasValue(Attribute attribute, std::string_view value) const;
  bool isOnlyValue(Attribute attribute, std::string_view value) const;

  // How many lines the attribute has: not less than it has values.
  std::size_t lineCount(Attribute attribute) const { return m_attributes[attribute].count; }

  // How the entry writes the attribute's name: as its first line does.
  std::string nameAsWritten(Attribute attribute) const;

  // Calls `visit` with the name of each attribute, in the order and the spelling of their first lines.
  void visitNames(const std::function<void(std::string_view)>& visit) const;

  // Adds `line`, a value of `attribute`, below the attribute's last line.
  void append(Attribute attribute, const Line& line);

  // Adds `line`, the first value of an attribute that the entry lacks, below the last attribute or the dn line.
  void appendNew(const Line& line);

  // Removes every line of `attribute` that holds `value`. Needs no memory that hasValue did not need.
  void remove(Attribute attribute, std::string_view value);

  // Makes `value` the only value: a line that holds it is kept, or else the first line is replaced by `line`, which
  // writes it; the other lines go.
  void replace(Attribute attribute, std::string_view value, const Line& line);

  template <class Visit>
  void visitLines(const Visit& visit) const {
    for (NodeId id = m_first; id != kNoNode; id = m_nodes[id].next) visit(m_nodes[id].line);
  }

  // Calls `visit(place, line)` with all lines in order. Places are numbers below size(), one for each line.
  template <class Visit>
  void visitPlaces(const Visit& visit) const {
    for (NodeId id = m_first; id != kNoNode; id = m_nodes[id].next) visit(std::size_t{id}, m_nodes[id].line);
  }

  // Calls `visit(place, line, first)` with all values, attribute by attribute: attributes in the order of their first
  // lines, the lines of an attribute in their own order. `first` is true for the first line of each attribute.
  template <class Visit>
  void visitByAttribute(const Visit& visit) const {
    for (NodeId id = m_first; id != kNoNode; id = m_nodes[id].next) {
      if (m_nodes[id].line.kind != LineKind::attribute || m_nodes[id].previousValue != kNoNode) continue;
      for (NodeId at = id; at != kNoNode; at = m_nodes[at].nextValue)
        visit(std::size_t{at}, m_nodes[at].line, at == id);
    }
  }

  std::size_t size() const { return m_nodes.size(); }

 private:
  using NodeId = std::uint32_t;
  static constexpr NodeId kNoNode = 0xffffffff;

  struct Node {
    Line line;
    NodeId previous = kNoNode;
    NodeId next = kNoNode;
    NodeId previousValue = kNoNode;
    NodeId nextValue = kNoNode;
  };
  struct AttributeLines {
    std::uint32_t nameKey = 0;  // tells most names apart
    std::uint32_t count = 0;
    NodeId name = kNoNode;  // a line that has the name; it may be gone from the entry
    NodeId first = kNoNode;
    NodeId last = kNoNode;
  };
  using ByValue = std::unordered_multimap<std::size_t, NodeId>;  // hash of the value -> line

  Attribute findAny(std::string_view name) const;
  Attribute findOrAdd(std::string_view name, NodeId node);
  const ByValue& byValue(Attribute attribute) const;
  NodeId findValue(Attribute attribute, std::string_view value) const;
  void linkAfter(NodeId previous, NodeId node) noexcept;
  void linkValue(Attribute attribute, NodeId node) noexcept;
  void unlink(Attribute attribute, NodeId node) noexcept;

  std::vector<Node> m_nodes;
  std::vector<AttributeLines> m_attributes;
  NodeId m_first = kNoNode;
  NodeId m_lastNamed = kNoNode;  // the last attribute line, or the dn line

  std::unordered_multimap<std::size_t, Attribute> m_byName;  // filled when there are many attributes
  mutable std::unordered_map<Attribute, ByValue> m_byValue;  // for attributes with many values, once it is needed
  mutable std::string m_scratch;
  mutable Attribute m_lastFound = 0;  // mostly it is asked for again, or the one behind it
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_ENTRYLINES_H
