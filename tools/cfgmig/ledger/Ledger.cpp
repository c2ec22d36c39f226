#include "Ledger.h"

namespace tool {

const char* nameOf(ValueFate fate) {
  switch (fate) {
    case ValueFate::same:
      return "same";
    case ValueFate::carried:
      return "carried";
    case ValueFate::moved:
      return "moved";
    case ValueFate::dropped:
      return "dropped";
    case ValueFate::keptNew:
      return "kept-new";
    case ValueFate::cleaned:
      return "cleaned";
    case ValueFate::lost:
      break;
  }
  return "lost";
}

const char* nameOf(ValueOrigin origin) {
  switch (origin) {
    case ValueOrigin::fromNew:
      return "new";
    case ValueOrigin::carried:
      return "carried";
    case ValueOrigin::moved:
      return "moved";
    case ValueOrigin::addedByRule:
      break;
  }
  return "added-by-rule";
}

}  // namespace tool
