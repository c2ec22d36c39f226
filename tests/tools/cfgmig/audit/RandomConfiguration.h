// RandomConfiguration.h -- arbitrary configurations that the rules have something to say about.

#ifndef CFGMIG_TESTS_TOOL_AUDIT_RANDOMCONFIGURATION_H
#define CFGMIG_TESTS_TOOL_AUDIT_RANDOMCONFIGURATION_H

#include <rapidcheck.h>

#include <string>
#include <vector>

// An LDIF text: entries with names that the rules know, under their present and their older names and in several
// spellings, some with no naming value or no object class, with settings that the rules name and others, with values
// that contain what the rules look for, with several values where one is usual, and with repeated lines.
rc::Gen<std::string> randomConfiguration();

#endif  // CFGMIG_TESTS_TOOL_AUDIT_RANDOMCONFIGURATION_H
