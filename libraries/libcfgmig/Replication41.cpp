// Replication41.cpp -- rebuilds the master server entry of a configuration that holds its replication in the 4.1 form.

#include "ConfigFile.h"
#include "internal/MasterServer.h"
#include "internal/StoreResults.h"
#include "internal/TraceScope.h"

using namespace cfgmig;

namespace {

constexpr const char* kMasterDn = "zor-slapdMasterDN";
constexpr const char* kMasterPw = "zor-slapdMasterPW";
constexpr const char* kPeerDn = "zor-slapdPeerDN";
constexpr const char* kPeerPw = "zor-slapdPeerPW";
constexpr const char* kReferral = "zor-slapdMasterReferral";

// Intended: the first text names the read of an array, although a single value is read.
constexpr AttributeMessage kMasterUnread{"replAddEntry: getParamArrayValueInfo(replica) for %s returned rc=%d\n"};
constexpr AttributeMessage kReplicaUnread{"replAddEntry: getParamValueInfo(replica) for %s returned rc=%d\n"};
constexpr AttributeMessage kPeerUnread{"replAddEntry: getParamValueInfo(peer) for %s returned rc=%d\n"};
constexpr AttributeMessage kUnread{"replAddEntry: getParamValueInfo for %s returned rc=%d\n"};
constexpr AttributeMessage kNotAdded{"replAddEntry: addValue for %s returned rc=%d\n"};
constexpr RcMessage kMarkerClassNotAdded{"replAddEntry: addValue for ZOR-SLAPDPENDINGMIGRATION returned rc=%d\n"};
constexpr RcMessage kReplicaMarkerNotAdded{
    "replAddEntry: addValue(replica) for ZOR-SLAPDMIGRATIONINFO returned rc=%d\n"};
constexpr RcMessage kPeerMarkerNotAdded{"replAddEntry: addValue(peer) for ZOR-SLAPDMIGRATIONINFO returned rc=%d\n"};

// Reads and writes single values of the master server entry. Every operation tells whether it succeeded and reports
// when it did not.
struct MasterServerCopy {
  OVOConfigUtils::CfgUtils& source;
  OVOConfigUtils::CfgUtils& target;
  const TraceScope& trace;

  bool read(const char* attribute, Text& value, AttributeMessage failure) const {
    const int rc = source.getParamValueInfo(dn::kMasterServer, attribute, value.out());
    if (rc != 0) trace.debug(failure, attribute, rc);
    return rc == 0;
  }
  bool add(const char* attribute, const char* value) const { return addNaming(attribute, value, attribute); }
  // The message names something else than the attribute.
  bool addNaming(const char* attribute, const char* value, const char* reported) const {
    const int rc = target.addValue(dn::kMasterServer, attribute, value);
    if (rc != 0) trace.debug(kNotAdded, reported, rc);
    return rc == 0;
  }
  bool mark(const char* attribute, const char* value, RcMessage failure) const {
    const int rc = target.addValue(dn::kMasterServer, attribute, value);
    if (rc != 0) trace.debug(failure, rc);
    return rc == 0;
  }

  // An entry that exists already is not marked again, which is no failure.
  bool create() const {
    if (createMasterServer(target) != 0) return true;
    return addNaming(kObjectClass, kConfigEntryClass, kConfigEntryClass) &&
           mark(kObjectClass, kPendingClass, kMarkerClassNotAdded);
  }

  // Intended: a replica's password is read before its marker is written, a peer's marker is written first, so that a
  // peer whose password cannot be read leaves its marker behind.
  bool replica(Text& password) const {
    return read(kMasterPw, password, kReplicaUnread) && mark(kMigrationInfo, kReplica, kReplicaMarkerNotAdded);
  }
  bool peer(Text& password) const {
    return mark(kMigrationInfo, kPeer, kPeerMarkerNotAdded) && read(kPeerPw, password, kPeerUnread);
  }

  // Neither a replica nor a peer: no marker, and the values to be added are absent, which the store refuses.
  bool identity() const {
    Text masterDn;
    Text peerDn;
    Text password;
    if (!read(kMasterDn, masterDn, kMasterUnread)) return false;
    if (masterDn.get() != nullptr) {
      if (!replica(password)) return false;
    } else {
      if (!read(kPeerDn, peerDn, kPeerUnread)) return false;
      if (peerDn.get() != nullptr && !peer(password)) return false;
    }
    return add(kMasterDn, masterDn.get() != nullptr ? masterDn.get() : peerDn.get()) && add(kMasterPw, password.get());
  }

  bool referral() const {
    Text value;
    if (!read(kReferral, value, kUnread)) return false;
    return value.get() == nullptr || add(kReferral, value.get());
  }
};

}  // namespace

int ConfigFile::replAddEntry(ConfigFile* old) {
  TraceScope trace(kReplAddEntry);
  const MasterServerCopy copy{*old->getCfgUtils(), m_cfgUtils, trace};
  return trace.result(copy.create() && copy.identity() && copy.referral() ? 1 : 0);
}
