#include "World.h"

#include <cstdio>
#include <cstdlib>

#include "SimpleDn.h"

namespace fake {

namespace {

World* g_world = nullptr;

std::optional<std::string> simpleForm(std::string_view dn) {
  std::string form = simpleDn(dn);
  return form.empty() ? std::nullopt : std::make_optional(std::move(form));
}

}  // namespace

World::World(Memory memory) : m_resources(memory == Memory::accounted), m_form(simpleForm) {
  if (g_world != nullptr) {
    std::fputs("there is a World already\n", stderr);
    std::abort();
  }
  g_world = this;
  trcEvents = kAllEvents;
}

World::~World() { g_world = nullptr; }

World& World::current() {
  if (g_world == nullptr) {
    std::fputs("there is no World\n", stderr);
    std::abort();
  }
  return *g_world;
}

World* World::currentOrNull() { return g_world; }

aes_key_data* World::keyOf(const std::string& fileName) const {
  const auto found = m_keys.find(fileName);
  return found == m_keys.end() ? nullptr : found->second;
}

std::vector<std::string> World::calls() const {
  std::vector<std::string> lines;
  for (const std::string& line : m_calls) {
    if (!line.starts_with("compareDns(")) {
      lines.push_back(line);
    }
  }
  return lines;
}

void World::called(std::string line) {
  if (m_onCall) {
    m_onCall(line);
  }
  if (m_keepsCalls) {
    m_calls.push_back(std::move(line));
  }
}

std::vector<std::string> World::trace() const {
  std::vector<std::string> lines;
  for (const TraceRecord& kept : m_records) {
    lines.push_back(text(kept));
  }
  return lines;
}

std::vector<std::string> World::messages() const {
  std::vector<std::string> lines;
  for (const TraceRecord& kept : m_records) {
    if (kept.kind == TraceRecord::Kind::debug || kept.kind == TraceRecord::Kind::globalDebug) {
      lines.push_back(text(kept));
    }
  }
  return lines;
}

void World::record(TraceRecord record) {
  m_records.push_back(std::move(record));
  if (m_onRecord) {
    m_onRecord(m_records.back());
  }
}

bool World::allocationFails(std::size_t size) {
  m_allocationSizes.push_back(size);
  const bool numbered = m_failingAllocation > 0 && --m_failingAllocation == 0;
  const bool sized = m_failingSize == size;
  if (sized) {
    m_failingSize.reset();
  }
  return numbered || sized;
}

void World::forgetCalls() {
  m_calls.clear();
  m_records.clear();
  m_allocationSizes.clear();
}

}  // namespace fake
