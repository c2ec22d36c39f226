#include "Saving.h"

#include <fstream>
#include <iterator>
#include <ostream>

#include "Failure.h"
#include "PrintableText.h"

namespace tool {
namespace {

bool holds(const std::string& path, const std::string& content) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  const std::string found{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  return !in.bad() && found == content;
}

void tellNothingToDo(const std::string& target, Console& console) {
  console.out << "Nothing to do: " << ldtr::printable(target) << " holds the result already.\n";
}

}  // namespace

cfgstore::SaveResult saveTo(cfgstore::ConfigStore& store, const std::string& target, unsigned permissions) {
  try {
    return store.save(target, cfgstore::Backup::keep, permissions);
  } catch (const cfgstore::SaveRefused& error) {
    throw Failure(ExitStatus::blocked, ldtr::printable(error.what()));
  } catch (const cfgstore::RestoreError& error) {
    throw Failure(ExitStatus::notUndone, ldtr::printable(error.what()));
  } catch (const cfgstore::SaveError& error) {
    throw Failure(ExitStatus::failed, ldtr::printable(error.what()));
  }
}

ExitStatus tellSaved(const cfgstore::SaveResult& saved, const std::string& target, const std::string& shortcoming,
                     Console& console) {
  const ExitStatus status = shortcoming.empty() ? ExitStatus::done : ExitStatus::lost;
  if (!saved.written) {
    tellNothingToDo(target, console);
    return status;
  }
  if (!saved.backupPath.empty()) console.out << "  backup   " << ldtr::printable(saved.backupPath) << '\n';
  console.out << "Written: " << ldtr::printable(target) << (shortcoming.empty() ? "" : ", ") << shortcoming << ".\n";
  console.out.flush();
  return console.out.good() ? status : ExitStatus::lost;
}

ExitStatus tellPreview(const cfgstore::ConfigStore& store, const std::string& target, Console& console) {
  if (holds(target, store.text())) {
    tellNothingToDo(target, console);
  } else {
    console.out << "Preview: nothing was written; the result would go to " << ldtr::printable(target) << ".\n";
  }
  return ExitStatus::done;
}

}  // namespace tool
