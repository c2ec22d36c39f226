#include "StoreMaker.h"
#include "World.h"

namespace {

class MadeFake : public MadeStore {
 public:
  explicit MadeFake(const std::vector<fake::Entry>& entries) : m_world(fake::World::Memory::unseen) {
    for (const fake::Entry& entry : entries) {
      m_world.store("made").put(entry.dn, entry.attributes);
    }
    m_utils = std::make_unique<OVOConfigUtils::CfgUtils>("made", nullptr);
  }
  OVOConfigUtils::CfgUtils& utils() override { return *m_utils; }

 private:
  fake::World m_world;
  std::unique_ptr<OVOConfigUtils::CfgUtils> m_utils;
};

}  // namespace

std::unique_ptr<MadeStore> makeStore(const std::vector<fake::Entry>& entries) {
  return std::make_unique<MadeFake>(entries);
}
