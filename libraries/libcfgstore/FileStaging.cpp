#include "FileStaging.h"

#include <ctime>
#include <utility>

#include "NewFile.h"

namespace cfgstore {
namespace {

thread_local FileStaging* t_active = nullptr;

std::string describe(const StagedCopy& copy, const char* why) {
  return copy.source + ": cannot be copied to " + copy.destination + ": " + why;
}

}  // namespace

FileStaging::FileStaging(FileSystem& fileSystem) : m_fileSystem(fileSystem) {
  if (t_active != nullptr) throw std::logic_error("file copies are staged already");
  t_active = this;
}

FileStaging::~FileStaging() {
  end();
  try {
    rollback();
  } catch (...) {
    return;
  }
}

FileStaging* FileStaging::active() { return t_active; }

void FileStaging::end() {
  if (t_active == this) t_active = nullptr;
}

bool FileStaging::stage(const std::string& source, const std::string& destination, mode_t permissions) {
  StagedCopy& copy = m_copies.emplace_back();
  copy.source = source;
  copy.destination = destination;
  try {
    copy.found = FileCopy(m_fileSystem, source, destination, permissions).check();
  } catch (const FileError& error) {
    copy.refusal = error.what();
    return false;
  }
  // A destination that is staged already will be there when this copy is made.
  for (const Plan& plan : m_plans) {
    const StagedCopy& earlier = m_copies[plan.copy];
    if (earlier.destination != destination) continue;
    copy.found = earlier.source == source ? FileCopy::Found::sameContent : FileCopy::Found::otherContent;
  }
  m_plans.push_back({m_copies.size() - 1, permissions});
  return true;
}

void FileStaging::commit() {
  end();
  const std::time_t now = std::time(nullptr);
  std::vector<Plan> plans;
  plans.swap(m_plans);
  m_made.reserve(plans.size());
  for (const Plan& plan : plans) {
    StagedCopy& copy = m_copies[plan.copy];
    try {
      auto file = std::make_unique<FileCopy>(m_fileSystem, copy.source, copy.destination, plan.permissions);
      m_made.push_back({plan.copy, std::move(file)});
      m_made.back().file->run(now);
      copy.backupPath = m_made.back().file->backupPath();
    } catch (const FileNotRestored& error) {
      std::string what = describe(copy, error.what());
      m_made.pop_back();
      try {
        rollback();
      } catch (const StagingNotUndone& others) {
        what += std::string("; ") + others.what();
      }
      throw StagingNotUndone(what);
    } catch (const FileError& error) {
      const std::string what = describe(copy, error.what());
      rollback();
      throw StagingError(what);
    } catch (...) {
      rollback();
      throw;
    }
  }
}

void FileStaging::rollback() {
  std::string failures;
  for (; !m_made.empty(); m_made.pop_back()) {
    StagedCopy& copy = m_copies[m_made.back().copy];
    try {
      m_made.back().file->undo();
      copy.backupPath.clear();
    } catch (const FileError& error) {
      failures += (failures.empty() ? "" : "; ") + copy.destination + ": " + error.what();
    }
  }
  if (!failures.empty()) throw StagingNotUndone(failures);
}

}  // namespace cfgstore
