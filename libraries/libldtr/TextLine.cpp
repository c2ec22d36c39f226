#include "PrintableText.h"
#include "TraceControl.h"

namespace ldtr {

std::string textLine(const Record& record) {
  const std::string method = record.identifier == 0 && record.method.empty() ? "(no method)" : printable(record.method);
  switch (record.kind) {
    case RecordKind::entry:
      return "entry " + method;
    case RecordKind::exit:
      return "exit  " + method + " result=" + std::to_string(record.result);
    case RecordKind::debug:
      break;
  }
  std::string_view message = record.message;
  if (!message.empty() && message.back() == '\n') message.remove_suffix(1);
  return "debug " + method + ' ' + printable(message);
}

}  // namespace ldtr
