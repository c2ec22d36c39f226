// Redaction.h -- the one place that decides which values a report shows, and in which form.
//
// A value is a secret when its attribute holds secrets or it looks like one (Secrets.h), when it came from a value that
// is a secret or replaced one, and when it repeats one in another place. Reports, reasons and messages show none,
// unless secrets were asked for.

#ifndef CFGMIG_TOOL_REPORT_REDACTION_H
#define CFGMIG_TOOL_REPORT_REDACTION_H

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "report/Content.h"
#include "report/KnownSecrets.h"

namespace tool {

inline constexpr std::string_view kRedacted = "[redacted]";

// A value as a report may show it.
struct ShownValue {
  enum class Form : std::uint8_t {
    text,      // UTF-8, as it is: any character but zero, so the format has to escape what it must
    base64,    // what is not UTF-8, in base64
    redacted,  // a secret; the text is kRedacted
  };

  Form form = Form::text;
  std::string text;

  bool isRedacted() const { return form == Form::redacted; }
};

// On one line, safe for a terminal: control characters and what turns the writing direction are escaped as
// ldtr::printable does it, base64 has "base64:" in front.
std::string lineOf(const ShownValue& value);

class Redaction {
 public:
  // Looks at every value of the three configurations once, when it is first asked for one. The ledger must outlive it.
  Redaction(const Ledger& ledger, bool showSecrets) : m_ledger(&ledger), m_showSecrets(showSecrets) {}

  bool showsSecrets() const { return m_showSecrets; }

  // Whether the value is a secret, shown or not.
  bool isSecret(Content content, ValueId value) const;
  bool isSecret(std::string_view attribute, std::string_view value) const;

  // The value in the form in which it may be shown.
  ShownValue shown(Content content, ValueId value) const;
  ShownValue shown(std::string_view attribute, std::string_view value) const;  // for values outside the snapshots

  // A text that is no value but might hold one (a message, a reason, an error), with every secret in it replaced by
  // kRedacted. The rest is unchanged; see ldtr::printable for what a terminal must not get.
  std::string words(std::string_view text) const;

 private:
  using Marks = std::array<std::vector<bool>, kContents>;  // of the values of each content: whether it is a secret
  struct Secrets {
    Marks marks;
    KnownSecrets known;
  };

  static Secrets look(const Ledger& ledger);
  const Secrets& secrets() const {
    if (!m_secrets) m_secrets = look(*m_ledger);
    return *m_secrets;
  }

  const Ledger* m_ledger;
  bool m_showSecrets;
  mutable std::optional<Secrets> m_secrets;  // a summary of a merge without losses needs none
};

}  // namespace tool

#endif  // CFGMIG_TOOL_REPORT_REDACTION_H
