// MessageListener.h -- hears the library's debug messages while one of its methods runs.

#ifndef CFGMIG_TOOL_MESSAGELISTENER_H
#define CFGMIG_TOOL_MESSAGELISTENER_H

#include <cstdint>
#include <string>
#include <vector>

namespace tool {

// From its making to its end, debug messages are enabled (besides what was enabled before) and kept.
class MessageListener {
 public:
  // What a message is about. The library marks its reports of what it finds as information.
  enum class Kind { failure, information };

  struct Message {
    unsigned long method = 0;  // its trace identifier; 0 when it has none
    Kind kind = Kind::failure;
    std::string text;  // in printable form, without its newline
  };

  MessageListener();
  ~MessageListener();
  MessageListener(const MessageListener&) = delete;
  MessageListener& operator=(const MessageListener&) = delete;

  // The texts of the messages of this kind and method, in order. Throws std::bad_alloc when one could not be kept.
  std::vector<std::string> of(unsigned long method, Kind kind) const;

 private:
  std::uint32_t m_eventsBefore;
  std::vector<Message> m_messages;
  bool m_isIncomplete = false;
};

}  // namespace tool

#endif  // CFGMIG_TOOL_MESSAGELISTENER_H
