#include "CommandLine.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <string_view>

#include "Failure.h"
#include "PrintableText.h"
#include "Suggestion.h"

namespace tool {
namespace {

constexpr const char* kHelpForm = "--help";
constexpr const char* kShortHelpForm = "-h";
constexpr const char* kVersionForm = "--version";

[[noreturn]] void refuse(const Command* command, const std::string& what) {
  const std::string hint = command == nullptr ? "see: cfgmig help" : std::string("see: cfgmig help ") + command->name;
  throw Failure(ExitStatus::usage, {what, hint});
}

std::string inQuotes(std::string_view word) { return "'" + ldtr::printable(word) + "'"; }

std::string withSuggestion(const std::string& what, std::string_view word, const std::vector<std::string>& known) {
  const std::string near = nearest(word, known);
  return near.empty() ? what : what + " (did you mean " + near + "?)";
}

Invocation helpOn(const std::string& command) {
  Invocation invocation{findCommand("help"), {}};
  if (!command.empty()) invocation.arguments.set("COMMAND", command);
  return invocation;
}

bool looksLikeOption(std::string_view word) { return word.size() > 1 && word.front() == '-'; }

std::string lowerCase(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

// Reads the words behind a command, once from the first to the last. Each mistake is told with Failure.
class Reading {
 public:
  Reading(const Command& command, const std::vector<std::string>& words)
      : m_command(command), m_options(optionsOf(command)), m_words(words) {}

  Arguments arguments() {
    while (m_next < m_words.size()) readWord(m_words[m_next++]);
    for (const Option& option : m_options) refuseMissing(option);
    for (const Option& option : m_options) refuseUnfitting(option);
    return m_arguments;
  }

 private:
  void readWord(const std::string& word) {
    if (m_isOnlyArguments || !looksLikeOption(word)) {
      readArgument(word);
    } else if (word == "--") {
      m_isOnlyArguments = true;
    } else if (word[1] == '-') {
      readLongForm(word);
    } else {
      readLetters(word);
    }
  }

  void readArgument(const std::string& word) {
    const auto isFree = [&](const Option& option) { return option.isPositional() && !m_arguments.has(option.name); };
    const auto option = std::find_if(m_options.begin(), m_options.end(), isFree);
    if (option == m_options.end()) refuse(&m_command, "unexpected argument " + inQuotes(word));
    take(*option, word);
  }

  // --name, --name VALUE, --name=VALUE. The name is never shortened: a command line in a script should not change its
  // meaning when the tool gets another option.
  void readLongForm(const std::string& word) {
    const std::size_t end = word.find('=');
    const std::string name = word.substr(0, end);
    const Option* const option = named(name);
    if (option == nullptr) refuseUnknown(name);
    if (!option->isFlag()) return take(*option, end == std::string::npos ? nextWord(*option) : word.substr(end + 1));
    if (end != std::string::npos) refuse(&m_command, "option " + name + " takes no value");
    take(*option, "");
  }

  // -n, -vn, -o VALUE, -oVALUE.
  void readLetters(const std::string& word) {
    for (std::size_t i = 1; i < word.size(); ++i) {
      const Option* const option = withLetter(word[i]);
      if (option == nullptr) refuseUnknown(i == 1 ? word : std::string{'-', word[i]});
      if (!option->isFlag()) return take(*option, i + 1 < word.size() ? word.substr(i + 1) : nextWord(*option));
      take(*option, "");
    }
  }

  // The value of an option that stands by itself. A known option in its place means that the value was forgotten.
  std::string nextWord(const Option& option) {
    const bool isThere =
        m_next < m_words.size() && named(m_words[m_next].substr(0, m_words[m_next].find('='))) == nullptr;
    if (!isThere) refuse(&m_command, std::string("option ") + option.name + " needs a value: " + option.value);
    return m_words[m_next++];
  }

  void take(const Option& option, const std::string& value) {
    if (!option.isFlag()) check(option, value);
    m_arguments.set(option.name, value);
  }

  void check(const Option& option, const std::string& value) const {
    const std::string name = option.name;
    if (m_arguments.has(name)) refuse(&m_command, "option " + name + " is given more than once");
    if (value.empty()) refuse(&m_command, name + " must not be empty");
    // It would make or look for a file of that name, where most people mean a standard stream.
    if (value == "-" && !option.isStreamToo) {
      refuse(&m_command, name + " is '-', which is no file here; a file of that name is ./-");
    }
    const auto isIt = [&](const char* word) { return value == word; };
    if (!option.words.empty() && std::none_of(option.words.begin(), option.words.end(), isIt)) {
      refuse(&m_command,
             "unknown " + lowerCase(option.value) + " " + inQuotes(value) + "; known are: " + listOf(option.words));
    }
  }

  bool hasPlan() const { return takesPlanOrFiles(m_command) && m_arguments.has(kPlanArgument); }

  // The rest can be told only when all words are known.

  void refuseMissing(const Option& option) const {
    if (!option.isRequired || m_arguments.has(option.name) || (option.isInPlan && hasPlan())) return;
    refuse(&m_command, option.isPositional() ? std::string("missing argument: ") + option.name
                                             : std::string("missing option: ") + option.name + " " + option.value);
  }

  void refuseUnfitting(const Option& option) const {
    if (!m_arguments.has(option.name)) return;
    const std::string name = option.name;
    if (option.isInPlan && hasPlan()) refuse(&m_command, name + " cannot be given with a plan, which has it");
    if (option.needs[0] != 0 && !m_arguments.has(option.needs)) refuse(&m_command, name + " needs " + option.needs);
  }

  [[noreturn]] void refuseUnknown(const std::string& name) const {
    std::vector<std::string> known = {kHelpForm};
    for (const Option& option : m_options) {
      if (!option.isPositional()) known.emplace_back(option.name);
    }
    refuse(&m_command, withSuggestion("unknown option " + inQuotes(name), name, known));
  }

  const Option* named(std::string_view name) const {
    const auto isIt = [&](const Option& option) { return !option.isPositional() && option.name == name; };
    const auto found = std::find_if(m_options.begin(), m_options.end(), isIt);
    return found == m_options.end() ? nullptr : &*found;
  }

  const Option* withLetter(char letter) const {
    const auto isIt = [&](const Option& option) { return option.letter == letter; };
    const auto found = std::find_if(m_options.begin(), m_options.end(), isIt);
    return found == m_options.end() ? nullptr : &*found;
  }

  const Command& m_command;
  const std::vector<Option> m_options;
  const std::vector<std::string>& m_words;
  std::size_t m_next = 0;          // the next word that is read
  bool m_isOnlyArguments = false;  // after "--"
  Arguments m_arguments;
};

// Whoever asks for help gets it, whatever else is missing or wrong. Behind "--" the words are arguments.
bool asksForHelp(const std::vector<std::string>& words) {
  const auto end = std::find(words.begin(), words.end(), "--");
  return std::any_of(words.begin(), end,
                     [](const std::string& word) { return word == kHelpForm || word == kShortHelpForm; });
}

// An option in place of a command: perhaps one of a command that is to follow, or a command with dashes.
[[noreturn]] void refuseOptionAsCommand(const std::string& word) {
  const std::string name = word.substr(0, word.find('='));
  if (const Command* const command = findCommand(name.substr(std::min(name.find_first_not_of('-'), name.size())))) {
    refuse(nullptr, "unknown option " + inQuotes(name) + " (did you mean " + command->name + "?)");
  }
  for (const Command& command : commands()) {
    for (const Option& option : optionsOf(command)) {
      if (option.name == name)
        refuse(nullptr, "option " + name + " goes behind a command, as in: cfgmig " + command.name + " " + name);
    }
  }
  refuse(nullptr, withSuggestion("unknown option " + inQuotes(name), name, {kHelpForm, kVersionForm}));
}

}  // namespace

const Command& commandNamed(const std::string& word) {
  if (const Command* command = findCommand(word)) return *command;
  if (looksLikeOption(word)) refuseOptionAsCommand(word);
  std::vector<std::string> known;
  for (const Command& command : commands()) known.emplace_back(command.name);
  refuse(nullptr, withSuggestion("unknown command " + inQuotes(word), word, known));
}

Invocation parseCommandLine(const std::vector<std::string>& words) {
  if (words.empty()) refuse(nullptr, "no command");
  const std::string& first = words.front();
  if (first == kHelpForm || first == kShortHelpForm) return helpOn("");
  if (first == kVersionForm) return {findCommand("version"), {}};

  const Command& command = commandNamed(first);
  const std::vector<std::string> rest(words.begin() + 1, words.end());
  if (asksForHelp(rest)) return helpOn(command.name);
  return {&command, Reading(command, rest).arguments()};
}

}  // namespace tool
