// RewriteCommand.cpp -- cfgmig rewrite.

#include <memory>
#include <optional>
#include <ostream>
#include <string>

#include "Commands.h"
#include "ConfigStore.h"
#include "Configuration.h"
#include "Document.h"
#include "Failure.h"
#include "OutputFile.h"
#include "PrintableText.h"
#include "Saving.h"
#include "SourceText.h"
#include "Target.h"

namespace tool {

ExitStatus runRewrite(const Arguments& arguments, Console& console) {
  const std::string in = arguments.value("IN");
  const std::string out = arguments.value("OUT");
  refuseSameFile({in, "IN"}, {out, "OUT"});
  refuseNoTarget(out);
  const std::unique_ptr<cfgstore::ConfigStore> store = openStore(in);
  const cfgstore::SaveResult saved = saveTo(*store, out);
  if (!saved.recoveredPath.empty()) {
    console.err << "cfgmig: kept: " << ldtr::printable(saved.recoveredPath)
                << ", which an interrupted run had replaced\n";
  }
  if (!saved.backupPath.empty()) console.err << "cfgmig: kept: " << ldtr::printable(saved.backupPath) << '\n';

  // The bytes that were read against those that are on the disk now, whatever the store makes of them in between.
  const std::string_view before = store->document().source().text();
  std::string why;
  const auto written = cfgstore::SourceText::read(out, why);
  if (!written) throw Failure(ExitStatus::lost, ldtr::printable(out) + ": was written, but " + why);
  if (written->text() != before) {
    throw Failure(ExitStatus::lost, ldtr::printable(out) + ": is not identical with " + ldtr::printable(in));
  }
  console.err << "cfgmig: " << ldtr::printable(out) << ": identical, " << before.size() << " bytes"
              << (saved.written ? "" : "; it was there already") << '\n';
  return ExitStatus::done;
}

}  // namespace tool
