// SharedOptions.h -- the options that several commands have. Each is described here once.

#ifndef CFGMIG_TOOL_OPTIONS_SHAREDOPTIONS_H
#define CFGMIG_TOOL_OPTIONS_SHAREDOPTIONS_H

#include "SourceVersions.h"
#include "options/Command.h"

namespace tool::shared {

inline constexpr const char* kFormats[] = {"text", "json", "ldif", "html"};

inline constexpr Option kFile = {
    .name = "FILE", .value = "FILE", .takes = Takes::file, .isRequired = true, .help = "a configuration"};

inline constexpr Option kAnyFile = meaning(kFile, "a configuration, or any LDIF content file; a pipe, too");

inline constexpr Option kOld = {.name = "--old",
                                .value = "FILE",
                                .takes = Takes::file,
                                .isRequired = true,
                                .isInPlan = true,
                                .help = "the old server's configuration; only read"};

inline constexpr Option kNew = {.name = "--new",
                                .value = "FILE",
                                .takes = Takes::file,
                                .isRequired = true,
                                .isInPlan = true,
                                .help = "the newly installed server's configuration; only read"};

inline constexpr Option kFrom = {
    .name = "--from",
    .value = "VERSION",
    .takes = Takes::oneOf,
    .words = kSourceVersions,
    .isInPlan = true,
    .help = "the old server's version",
    .more =
        "Without it the version is recognised from the old configuration, and told. When the configuration does "
        "not tell, or contradicts itself, the command stops. What speaks against a version that is given is told "
        "as a warning."};

inline constexpr Option kOutput = {.name = "--output",
                                   .letter = 'o',
                                   .value = "FILE",
                                   .takes = Takes::file,
                                   .isInPlan = true,
                                   .help = "write the result here instead of to the configuration",
                                   .more =
                                       "The configuration itself stays as it is. A file that is there already is "
                                       "kept beside the new one, with the time in its name."};

inline constexpr Option kOwnersOutput =
    meaning(kOutput, "write the result here; the file is for its owner only",
            "A file that is there already is replaced, and nobody but its owner can read it afterwards.");

inline constexpr Option kDryRun = {
    .name = "--dry-run", .letter = 'n', .help = "write nothing; tell what would be done"};

inline constexpr Option kJson = {.name = "--json", .help = "write JSON instead of text"};

inline constexpr Option kExitCode = {.name = "--exit-code", .help = "exit with 3 when something is left"};

inline constexpr Option kShowSecrets = {
    .name = "--show-secrets",
    .help = "show passwords and keys",
    .more = "Without it passwords, keys and values that seem to hold one are left out, and counted."};

inline constexpr Option kSearchDirectory = {
    .name = "--search-dir",
    .value = "DIR",
    .takes = Takes::directory,
    .isInPlan = true,
    .needs = "--target-dir",
    .help = "copy schema files, too: they are in DIR/etc",
    .more = "The files are those that the configuration includes and that are not the server's own."};

inline constexpr Option kTargetDirectory = {.name = "--target-dir",
                                            .value = "DIR",
                                            .takes = Takes::directory,
                                            .isInPlan = true,
                                            .needs = "--search-dir",
                                            .help = "the directory that schema files are copied to"};

inline constexpr Option kSchemaOptions[] = {kSearchDirectory, kTargetDirectory};

inline constexpr Option kReportOptions[] = {
    {.name = "--format",
     .value = "FORMAT",
     .takes = Takes::oneOf,
     .words = kFormats,
     .help = "write the whole account",
     .more = "It goes to standard output in place of the summary. The JSON is described in cfgmig-report(5)."},
    {.name = "--json", .help = "the same as --format json"},
    {.name = "--text-report",
     .value = "FILE",
     .takes = Takes::file,
     .help = "write the whole account as text to a file"},
    {.name = "--json-report",
     .value = "FILE",
     .takes = Takes::file,
     .help = "the same as JSON",
     .more = "Such a file is a plan, too. See cfgmig-report(5)."},
    {.name = "--ldif-report",
     .value = "FILE",
     .takes = Takes::file,
     .help = "the changes as LDIF, for a server that is running",
     .more = "Change records that a client such as ldapmodify can send. What is left out as a secret is missing in "
             "them, so that a server should be given those made with --show-secrets."},
    {.name = "--html-report",
     .value = "FILE",
     .takes = Takes::file,
     .help = "the same as a page for a browser",
     .more = "One file that needs nothing else, no network and no script."},
    meaning(kShowSecrets, "show passwords and keys in reports", kShowSecrets.more),
};

inline constexpr Option kTraceOptions[] = {
    {.name = "--trace",
     .value = "FILE",
     .takes = Takes::file,
     .isStreamToo = true,
     .help = "append trace records to a file; - is standard error",
     .more = "Every step of the library with its result. No values are traced. A new file is for its owner only."},
    {.name = "--trace-events",
     .value = "MASK",
     .takes = Takes::mask,
     .needs = "--trace",
     .help = "which ones, as an event mask (default: all)",
     .more = "32 bits, decimal or hexadecimal with 0x in front."},
};

inline constexpr Option kSizeOptions[] = {
    {.name = "--max-size",
     .value = "SIZE",
     .takes = Takes::size,
     .help = "refuse larger configurations: 512M, 4G, bytes (default: 1G)",
     .more = "The limit is there for what is opened by mistake: a disk image, a log, a pipe that never ends."},
};

inline constexpr OptionGroup kSchemaGroup = {"Schema files", kSchemaOptions};
inline constexpr OptionGroup kReportGroup = {"Reports", kReportOptions};
inline constexpr OptionGroup kTraceGroup = {"Trace", kTraceOptions};
inline constexpr OptionGroup kSizeGroup = {"Limits", kSizeOptions};

}  // namespace tool::shared

#endif  // CFGMIG_TOOL_OPTIONS_SHAREDOPTIONS_H
