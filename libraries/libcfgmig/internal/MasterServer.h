// MasterServer.h -- the master server entry of the new configuration, as replAddEntry and check51 build it. It is
// marked as pending migration, since its replication still has to be set up by hand. Not installed.

#ifndef CFGMIG_LIBCFGMIG_INTERNAL_MASTERSERVER_H
#define CFGMIG_LIBCFGMIG_INTERNAL_MASTERSERVER_H

#include "CfgUtils.h"
#include "KnownDns.h"

namespace cfgmig {

inline constexpr const char* kObjectClass = "OBJECTCLASS";
inline constexpr const char* kConfigEntryClass = "zor-slapdConfigEntry";
inline constexpr const char* kPendingClass = "ZOR-SLAPDPENDINGMIGRATION";

// The marker tells what the server was. It reads 4.1 for a 5.1 source, too: that is the form of the replication.
inline constexpr const char* kMigrationInfo = "ZOR-SLAPDMIGRATIONINFO";
inline constexpr const char* kReplica = "4.1 REPLICA";
inline constexpr const char* kPeer = "4.1 PEER";
inline constexpr const char* kFormerMaster = "4.1 MASTER";

// Returns the store's code.
inline int createMasterServer(OVOConfigUtils::CfgUtils& store) {
  return store.addEntry(dn::kMasterServer, "MASTER SERVER", "TOP", "zor-slapdReplication");
}

}  // namespace cfgmig

#endif  // CFGMIG_LIBCFGMIG_INTERNAL_MASTERSERVER_H
