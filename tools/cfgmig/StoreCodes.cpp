#include "StoreCodes.h"

namespace tool {
namespace {

struct CodeText {
  int code;
  const char* text;
};

constexpr CodeText kTexts[] = {
    {0, "done"},
    {1, "the store failed inside"},
    {2, "the request makes no sense to the store"},
    {16, "there is no such attribute or value"},
    {17, "no attribute can have this name"},
    {18, "the attribute cannot be compared in this way"},
    {19, "the value is against a rule of the store"},
    {20, "the value is there already"},
    {21, "the value has the wrong form for its attribute"},
    {32, "there is no such entry"},
    {34, "the DN is malformed"},
    {50, "not permitted"},
    {51, "the store is busy"},
    {52, "the store is not available"},
    {53, "the store is not willing to do this"},
    {64, "the entry would lose its naming value"},
    {65, "the entry's object classes do not allow it"},
    {66, "the entry has entries below it"},
    {68, "the entry exists already"},
    {80, "the store failed for a reason of its own"},
    {82, "the store failed inside"},
    {89, "an argument is missing or wrong"},
    {90, "there is not enough memory"},
};

}  // namespace

const char* storeCodeText(int code) {
  for (const CodeText& row : kTexts) {
    if (row.code == code) return row.text;
  }
  return "a code of the store's own";
}

const char* operationName(cfgstore::Operation operation) {
  switch (operation) {
    case cfgstore::Operation::addValue:
      return "addValue";
    case cfgstore::Operation::delValue:
      return "delValue";
    case cfgstore::Operation::setValue:
      return "setValue";
    case cfgstore::Operation::addEntry:
      return "addEntry";
    case cfgstore::Operation::removeEntry:
      break;
  }
  return "removeEntry";
}

}  // namespace tool
