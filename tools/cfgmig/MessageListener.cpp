#include "MessageListener.h"

#include <new>
#include <string_view>

#include "PrintableText.h"
#include "TraceControl.h"

namespace tool {
namespace {

constexpr unsigned long kInformationClass = 0xc8010000;

}  // namespace

MessageListener::MessageListener() : m_eventsBefore(ldtr::events()) {
  ldtr::sendAlsoTo([this](const ldtr::Record& record) {
    if (record.kind != ldtr::RecordKind::debug) return;
    try {
      std::string_view text = record.message;
      if (text.ends_with('\n')) text.remove_suffix(1);
      const Kind kind = record.messageClass == kInformationClass ? Kind::information : Kind::failure;
      m_messages.push_back({record.identifier, kind, ldtr::printable(text)});
    } catch (const std::bad_alloc&) {
      m_isIncomplete = true;
    }
  });
  ldtr::setEvents(m_eventsBefore | ldtr::kDebug);
}

MessageListener::~MessageListener() {
  ldtr::setEvents(m_eventsBefore);
  ldtr::sendAlsoTo({});
}

std::vector<std::string> MessageListener::of(unsigned long method, Kind kind) const {
  if (m_isIncomplete) throw std::bad_alloc();
  std::vector<std::string> texts;
  for (const Message& message : m_messages) {
    if (message.method == method && message.kind == kind) texts.push_back(message.text);
  }
  return texts;
}

}  // namespace tool
