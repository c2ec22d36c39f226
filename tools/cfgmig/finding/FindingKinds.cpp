#include "finding/FindingKinds.h"

namespace tool {
namespace {

using enum Severity;

constexpr FindingRow kRows[] = {
    {{"entry-not-carried", error, "Entries of the old configuration were not carried",
      "The rule for the entry gave up before it carried anything, so none of its settings is in the result.",
      "See the reason. Mend the old configuration or make the entry in the new one, and merge again; or set by hand "
      "what "
      "is missing."},
     findEntriesNotCarried},
    {{"transfer-ended-early", error, "Entries were not carried to their end",
      "One setting was refused, and the transfer of an entry ends at the first one. All settings behind it in the old "
      "entry were left behind with it.",
      "See the reason. Mend the setting in the old configuration and merge again, or set by hand what is missing."},
     findTransfersEndedEarly},
    {{"value-lost", error, "Values of the old configuration did not arrive",
      "They should have arrived, and the write was refused or had nowhere to go.",
      "See the reason. Make the entry or setting that is missing in the new configuration and merge again, or set the "
      "values by hand."},
     findValuesLost},
    {{"sealed-by-old-server", error, "Secrets are sealed with the key of the old server",
      "Each server seals passwords with a key of its own. The new server cannot open what another one has sealed: it "
      "will "
      "take the value for a wrong password.",
      "Set each of these passwords anew on the new server, which then seals it with its own key."},
     findSealedSecrets},
    {{"plugin-of-old-installation", error, "Plug-ins are loaded from the old installation",
      "The library is in a directory of the old server. It will be missing once that server is removed, and was not "
      "built "
      "for the new one.",
      "Name the new server's own library, or take the plug-in out."},
     findPlugInsOfOldInstallation},
    {{"schema-file-missing", error, "Schema files that are included are not there",
      "The configuration includes a schema file that is not on this machine. A server does not start, or refuses "
      "entries, without its schema.",
      "Find the file on the old machine and copy it (cfgmig schemas), or take the value out."},
     findMissingSchemaFiles},
    {{"entry-without-parent", error, "Entries have no parent entry",
      "The result holds an entry, but not the one above it. A directory server does not find it, or refuses to load "
      "it.",
      "Move the entry below the entry that has taken its parent's place, or take it out."},
     findEntriesWithoutParent},
    {{"master-without-credentials", error, "A master server entry has no credentials",
      "The entry was made anew from the old one, which names no identity or no password for replication that could be "
      "read. The replication cannot bind.",
      "Set zor-slapdMasterDN and zor-slapdMasterPW by hand."},
     findMastersWithoutCredentials},
    {{"migration-pending", warning, "Entries still have to be migrated",
      "A rule has marked the entry: its settings are in the form of an older server, and a later step has to turn them "
      "into the new server's form.",
      "Finish the migration of the entry, and remove the mark only after that."},
     findPendingMigrations},
    {{"second-value-not-carried", warning, "Further values of a setting were not carried",
      "The setting counts as one that has one value. The old configuration holds more, and only the first was carried.",
      "Look which value is wanted, and set it by hand."},
     findSecondValues},
    {{"plugin-library-missing", warning, "Libraries of plug-ins are not there",
      "The configuration loads a plug-in by its path, and there is no such file on this machine.",
      "Install the plug-in in a version for the new server, or take the value out."},
     findMissingPlugInLibraries},
    {{"path-into-old-installation", warning, "Paths point into the old installation",
      "The value names a file or directory of the old server, which will be missing once that server is removed.",
      "Name the place in the new installation, and move there what is needed."},
     findPathsIntoOldInstallation},
    {{"schema-file-twice", warning, "Schema files are included twice",
      "Two files of the same name are included, the new server's and the old one's, or one file by two ways. "
      "Definitions "
      "that are read twice are refused or override each other.",
      "Keep the one that belongs to the new server, and take the other out."},
     findSchemaFilesTwice},
    {{"dn-without-entry", warning, "Values name entries that are not there",
      "The value is the DN of a configuration entry that the result does not hold. It may have moved.",
      "Name the entry that has taken its place, or take the value out."},
     findDnsWithoutEntry},
    {{"entry-outside", warning, "Entries are outside of cn=Configuration",
      "No merge looks at entries that are not below the configuration's root entry. Nothing of them is in the result.",
      "See whether somebody still needs them, and make them by hand."},
     findEntriesOutside},
    {{"object-class-not-carried", note, "Object classes were not carried",
      "An entry that both configurations hold keeps the new server's object classes. The old entry has one more, and "
      "settings that only this one allows may be refused.",
      "Add the object class if the new server's schema has it."},
     findObjectClassesNotCarried},
};

}  // namespace

std::span<const FindingRow> findingRows() { return kRows; }

}  // namespace tool
