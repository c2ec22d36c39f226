#include "Inspection.h"

#include <utility>

#include "InspectionParts.h"
#include "SourceText.h"

namespace cfgstore {

Inspection inspect(const std::string& path, const InspectionLimits& limits) {
  RemarkList remarks(limits.mostPerKind);
  const auto addProblem = [&](Problem problem) {
    remarks.add(problem.line, problem.kind, [&] { return std::move(problem.text); });
    return true;
  };
  Inspection inspection;
  Problem why;
  if (const auto source = SourceText::read(path, why)) {
    TextArena arena;
    const LdifContent content = readLdif(source->text(), arena, addProblem);
    remarkOnLines(source->text(), content, remarks);
    inspection.values = remarkOnEntries(source->text(), content, remarks);
    inspection.entries = content.entries.size();
  } else {
    addProblem(std::move(why));
  }
  remarks.moveTo(inspection);
  return inspection;
}

}  // namespace cfgstore
