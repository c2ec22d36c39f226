// HtmlReport.h -- the report as one page that needs nothing else: no network, no other file, and no JavaScript to be
// read. Its script adds the search and opens what a filter shows.
//
// Everything that comes from a file is written as text, so that it cannot become markup or run; characters that cannot
// be seen or that turn the writing direction are written as marked escapes. A policy in the page forbids every
// connection and every script and style but its own, by their SHA-256.

#ifndef CFGMIG_TOOL_REPORT_HTML_HTMLREPORT_H
#define CFGMIG_TOOL_REPORT_HTML_HTMLREPORT_H

#include <iosfwd>

#include "report/Report.h"

namespace tool {

// Writes the page. `out` tells by its state whether it could be written. Each value stands in the page once, at its
// place among the entries; the list of what did not come along repeats the first of them, for the eye. Takes time in
// proportion to the values.
void writeHtml(const Report& report, std::ostream& out);

}  // namespace tool

#endif  // CFGMIG_TOOL_REPORT_HTML_HTMLREPORT_H
