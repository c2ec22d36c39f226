#include "PairReading.h"

#include <algorithm>
#include <utility>

#include "LdifReader.h"

namespace cfgstore {
namespace {

thread_local PairReading::Turn* t_turn = nullptr;

}  // namespace

PairReading::PairReading() = default;

PairReading::Turn::Turn(PairReading& pair, Side side, bool learnsHabits)
    : m_pair(pair), m_side(side), m_learnsHabits(learnsHabits) {
  if (!pair.m_isGivenUp) t_turn = this;
}

PairReading::Turn::~Turn() {
  t_turn = nullptr;
  pass();
}

void PairReading::Turn::pass() noexcept {
  if (m_isOver || m_pair.m_isGivenUp) return;
  m_isOver = true;
  m_pair.of(m_side).read.set_value({});
  m_pair.of(m_side).end.set_value();
}

PairReading::Turn* PairReading::Turn::take() { return std::exchange(t_turn, nullptr); }

PairReading::Exchange::Exchange(Turn& turn, Read mine) : m_turn(turn) {
  m_turn.m_isOver = true;
  m_turn.m_pair.of(m_turn.m_side).read.set_value(mine);
  m_theirs = m_turn.m_pair.of(otherThan(m_turn.m_side)).wasRead.get();
}

PairReading::Exchange::~Exchange() {
  m_turn.m_pair.of(m_turn.m_side).end.set_value();
  m_turn.m_pair.of(otherThan(m_turn.m_side)).reachedEnd.wait();
}

std::size_t upperHalfOf(std::string_view text) {
  constexpr std::size_t kAnEntry = 256;  // or less; it may begin right before the middle
  const std::size_t middle = text.size() / 2;
  for (std::size_t at = middle - std::min(middle, kAnEntry); (at = text.find('\n', at)) != std::string_view::npos;
       ++at) {
    const std::string_view next = text.substr(at + 1);
    if (next.starts_with("\ndn:")) return at + 2;
    if (next.starts_with("\r\ndn:")) return at + 3;
  }
  return std::string_view::npos;
}

bool join(LdifContent& lower, const LdifContent& upper) {
  const std::size_t lines = lower.lines.size();
  const std::size_t count = lower.entries.size();
  if (upper.lines.size() > kMostLines - lines) return false;
  lower.lines.insert(lower.lines.end(), upper.lines.begin(), upper.lines.end());
  lower.entries.reserve(count + upper.entries.size());
  for (EntrySpan entry : upper.entries) {
    entry.first += lines;
    entry.dn += lines;
    entry.end += lines;
    entry.line += lower.physicalLines;
    entry.endLine += lower.physicalLines;
    lower.entries.push_back(entry);
  }
  lower.physicalLines += upper.physicalLines;
  const auto keyOf = [&](EntryId id) { return lower.entries[id - 1].normal; };
  return lower.index.append(upper.index, static_cast<EntryId>(count), keyOf);
}

}  // namespace cfgstore
