#include "LedgerBuilder.h"

#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include "Accounting.h"
#include "ConfigStore.h"
#include "Configuration.h"
#include "EqualEntries.h"
#include "Failure.h"
#include "MergeRecorder.h"
#include "Threads.h"

namespace tool {
namespace {

std::vector<std::string> inventoryOf(ConfigFile& configuration) {
  char** const dns = configuration.getCfgDns();
  std::vector<std::string> inventory;
  for (int i = 0; dns != nullptr && i < configuration.getDnNum(); ++i) inventory.emplace_back(dns[i]);
  return inventory;
}

}  // namespace

struct LedgerBuilder::State {
  State(ConfigFile& oldConfiguration, ConfigFile& newConfiguration, std::string sourceVersion)
      : old(oldConfiguration), now(newConfiguration) {
    ledger->sourceVersion = std::move(sourceVersion);
    auto before =
        cfgstore::doBeside(storeOf(now).textAsRead().size(), [this] { return cfgstore::Snapshot(storeOf(now)); });
    ledger->old = cfgstore::Snapshot(storeOf(old));
    ledger->before = before.get();
    account.emplace(inventoryOf(old), inventoryOf(now), &ledger->old);
  }

  ConfigFile& old;
  ConfigFile& now;
  std::shared_ptr<Ledger> ledger = std::make_shared<Ledger>();
  std::optional<MergeAccount> account;
  std::optional<MergeRecorder> recorder;
  Account finished;
};

LedgerBuilder::LedgerBuilder(ConfigFile& old, ConfigFile& now, std::string version)
    : m_state(std::make_unique<State>(old, now, std::move(version))) {}

LedgerBuilder::~LedgerBuilder() = default;

void LedgerBuilder::merge() {
  State& state = *m_state;
  state.recorder.emplace(*state.account, state.old, state.now);
  const int result = state.now.mergeConfigFiles(&state.old, state.ledger->sourceVersion.c_str());
  state.recorder->endRecords();
  state.recorder->check();
  if (result == 0) throw Failure(ExitStatus::failed, "the merge could not begin; nothing was written");
  state.finished = state.account->finish();
}

void LedgerBuilder::cleanUpBy(unsigned long method) { m_state->account->setMethodOutside(method); }

std::shared_ptr<const Ledger> LedgerBuilder::begun() const { return m_state->ledger; }

std::shared_ptr<Ledger> LedgerBuilder::finish() {
  State& state = *m_state;
  state.recorder->check();
  state.recorder.reset();
  for (ConfigFile* const file : {&state.old, &state.now}) {
    if (!cfgstore::isSetAsideUntouched(storeOf(*file))) {
      throw std::logic_error("the merge has written to an entry that was set aside");
    }
  }
  Ledger& ledger = *state.ledger;
  ledger.result = cfgstore::Snapshot(storeOf(state.now));
  ledger.messages = state.finished.messages;
  Accounting(ledger, state.account->events(), state.account->works()).run();
  state.account->events().moveTo(ledger);
  return std::move(state.ledger);
}

Ledger migrate(ConfigFile& old, ConfigFile& now, const std::string& version) {
  LedgerBuilder builder(old, now, version);
  builder.merge();
  return std::move(*builder.finish());
}

}  // namespace tool
