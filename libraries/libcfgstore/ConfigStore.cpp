#include "ConfigStore.h"

#include <ctime>
#include <utility>

#include "AtomicFile.h"
#include "Document.h"
#include "EqualEntries.h"
#include "SaveAhead.h"
#include "SourceText.h"

namespace cfgstore {
namespace {

std::string describe(const std::string& path, const std::vector<Problem>& problems) {
  const Problem& first = problems.front();
  std::string text = path;
  if (first.line != 0) text.append(":").append(std::to_string(first.line));
  text.append(": ").append(first.text);
  if (problems.size() > 1) text.append(" (and ").append(std::to_string(problems.size() - 1)).append(" more)");
  return text;
}

SourceText readSource(const std::string& path) {
  Problem why;
  auto source = SourceText::read(path, why);
  if (!source) throw OpenError(path, {why});
  return std::move(*source);
}

}  // namespace

OpenError::OpenError(const std::string& path, std::vector<Problem> problems)
    : std::runtime_error(describe(path, problems)), m_path(path), m_problems(std::move(problems)) {}

struct ConfigStore::State {
  State(const std::string& path, SourceText text, std::vector<Problem>& problems)
      : document(std::move(text), problems), source(sourceAt(path)) {}
  State(const std::string& path, SourceText text, std::vector<Problem>& problems, const Document& model)
      : document(std::move(text), problems, model), source(sourceAt(path)) {}
  State(Document& edited, std::vector<Problem>& problems) : document(edited, problems), source(sourceAt({})) {}

  SourceFile sourceAt(const std::string& path) const {
    const SourceText& text = document.source();
    return {path, text.resolvedPath(), text.stamp(), text.text()};
  }

  Document document;
  SourceFile source;
  Observer observer;
  WriteGate gate;
};

ConfigStore::ConfigStore(const std::string& path) {
  std::vector<Problem> problems;
  m_state = std::make_unique<State>(path, readSource(path), problems);
  if (!problems.empty()) throw OpenError(path, std::move(problems));
}

ConfigStore::ConfigStore(std::unique_ptr<State> state) : m_state(std::move(state)) {}

std::unique_ptr<ConfigStore> openLike(const std::string& path, const ConfigStore& model) {
  std::vector<Problem> problems;
  auto state = std::make_unique<ConfigStore::State>(path, readSource(path), problems, model.document());
  if (!problems.empty()) throw OpenError(path, std::move(problems));
  return std::unique_ptr<ConfigStore>(new ConfigStore(std::move(state)));
}

std::unique_ptr<ConfigStore> readAsSaved(ConfigStore& store) {
  std::vector<Problem> problems;
  auto state = std::make_unique<ConfigStore::State>(store.document(), problems);
  if (!problems.empty()) throw OpenError({}, std::move(problems));
  return std::unique_ptr<ConfigStore>(new ConfigStore(std::move(state)));
}

ConfigStore::~ConfigStore() = default;

const std::string& ConfigStore::path() const { return m_state->source.path; }

void ConfigStore::observe(Observer observer) { m_state->observer = std::move(observer); }

const Observer& ConfigStore::observer() const { return m_state->observer; }

void ConfigStore::refuseWith(WriteGate gate) { m_state->gate = std::move(gate); }

const WriteGate& ConfigStore::gate() const { return m_state->gate; }

bool ConfigStore::changed() const { return m_state->document.changed(); }

std::string_view ConfigStore::textAsRead() const { return m_state->document.source().text(); }

std::string ConfigStore::text() const {
  const auto& pieces = m_state->document.pieces();
  std::size_t size = 0;
  for (const std::string_view piece : pieces) size += piece.size();
  std::string text;
  text.reserve(size);
  for (const std::string_view piece : pieces) text += piece;
  return text;
}

std::vector<std::string_view> ConfigStore::pieces() const { return m_state->document.pieces(); }

SaveResult ConfigStore::save(const std::string& target, Backup backup, unsigned permissions) {
  return SaveAhead(*this, target, permissions).finish(backup);
}

struct SaveAhead::State {
  SourceFile& source;
  AtomicFile file;
};

SaveAhead::SaveAhead(ConfigStore& store, const std::string& target, unsigned permissions)
    : m_state(new State{store.m_state->source, {FileSystem::real(), target, store.m_state->source}}) {
  m_state->file.prepare(store.m_state->document.pieces(), std::time(nullptr), permissions);
}

SaveAhead::~SaveAhead() = default;

const std::string& SaveAhead::recoveredPath() const { return m_state->file.recoveredPath(); }

SaveResult SaveAhead::finish(Backup backup) {
  SavedFile saved = m_state->file.finish(backup, std::time(nullptr));
  if (saved.isSource) {
    m_state->source.stamp = saved.stamp;
    if (saved.result.written) m_state->source.text.reset();
  }
  return std::move(saved.result);
}

bool ConfigStore::checkSave(const std::string& target, unsigned permissions) const {
  return AtomicFile(FileSystem::real(), target, m_state->source).check(m_state->document.pieces(), permissions);
}

unsigned ConfigStore::permissions() const { return m_state->source.stamp.mode; }

Document& ConfigStore::document() { return m_state->document; }

const Document& ConfigStore::document() const { return m_state->document; }

}  // namespace cfgstore
