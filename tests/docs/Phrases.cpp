#include "Phrases.h"

#include <map>
#include <stdexcept>

namespace pages {
namespace {

// A phrase with its texts in backquotes taken out: "each that contains `x`, `y` or `z`" is "each that contains *" and
// three texts.
struct Skeleton {
  std::string form;
  std::vector<std::string> texts;
};

void replaceAll(std::string& text, const std::string& what, const std::string& with) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what)) {
    text.replace(at, what.size(), with);
  }
}

Skeleton skeletonOf(const std::string& phrase) {
  Skeleton skeleton;
  for (std::size_t at = 0; at < phrase.size();) {
    const std::size_t end = phrase[at] == '`' ? phrase.find('`', at + 1) : std::string::npos;
    if (end == std::string::npos) {
      skeleton.form += phrase[at++];
      continue;
    }
    skeleton.texts.push_back(phrase.substr(at + 1, end - at - 1));
    skeleton.form += '*';
    at = end + 1;
  }
  replaceAll(skeleton.form, "*, *", "*");
  replaceAll(skeleton.form, "* or *", "*");
  return skeleton;
}

template <class Meaning>
Meaning meaningOf(const std::map<std::string, Meaning>& known, const std::string& form, const char* column) {
  const auto found = known.find(form);
  if (found == known.end()) throw std::runtime_error(std::string("\"") + column + "\" does not know \"" + form + "\"");
  return found->second;
}

}  // namespace

When whenFrom(const std::string& phrase) {
  static const std::map<std::string, Presence> kPresences = {
      {"old only", Presence::oldOnly},
      {"new only", Presence::newOnly},
      {"both", Presence::both},
      {"neither", Presence::neither},
  };
  static const std::map<std::string, Circumstance> kCircumstances = {
      {"", Circumstance::none},
      {"nothing there", Circumstance::nothingThere},
      {"as replica", Circumstance::replica},
      {"as peer", Circumstance::peer},
      {"as neither", Circumstance::unrelated},
      {"as replica without password", Circumstance::replicaWithoutPassword},
      {"as peer without password", Circumstance::peerWithoutPassword},
  };
  const std::size_t comma = phrase.find(", ");
  return {meaningOf(kPresences, phrase.substr(0, comma), "When"),
          meaningOf(kCircumstances, comma == std::string::npos ? "" : phrase.substr(comma + 2), "When")};
}

Setting settingFrom(const std::string& phrase) {
  static const std::map<std::string, Subject> kSubjects = {
      {"the entry", Subject::entry},
      {"the entry, without *", Subject::entryWithout},
      {"*", Subject::attribute},
      {"*, the only one", Subject::onlyValue},
      {"a list", Subject::list},
      {"a list, in both", Subject::listInBoth},
      {"any other, in both", Subject::otherInBoth},
      {"any other, in the old entry", Subject::otherInOld},
      {"any other, behind one in the old entry", Subject::otherBehindOld},
      {"any other, in the new entry", Subject::otherInNew},
      {"any other", Subject::other},
  };
  const Skeleton skeleton = skeletonOf(phrase);
  if (skeleton.texts.size() > 1) throw std::runtime_error("\"Setting\" names more than one: " + phrase);
  return {meaningOf(kSubjects, skeleton.form, "Setting"), skeleton.texts.empty() ? "" : skeleton.texts.front()};
}

Match matchFrom(const std::string& phrase) {
  using Kind = Match::Kind;
  static const std::map<std::string, Kind> kKinds = {
      {"", Kind::none},
      {"any", Kind::any},
      {"the first", Kind::theFirst},
      {"a later one", Kind::aLaterOne},
      {"exactly *", Kind::exactly},
      {"* in any letter case", Kind::inAnyCase},
      {"the first that contains *", Kind::firstContaining},
      {"a later one that contains *", Kind::laterContaining},
      {"each that contains *", Kind::eachContaining},
      {"in the first that contains *, what follows *", Kind::rest},
      {"any other", Kind::other},
      {"*", Kind::literal},
  };
  const Skeleton skeleton = skeletonOf(phrase);
  return {meaningOf(kKinds, skeleton.form, "Value"), skeleton.texts};
}

Fate fateFrom(const std::string& phrase) {
  static const std::map<std::string, Fate> kFates = {
      {"carried", Fate::carried}, {"moved", Fate::moved},
      {"dropped", Fate::dropped}, {"kept-new", Fate::keptNew},
      {"lost", Fate::lost},       {"left-behind", Fate::leftBehind},
      {"merged", Fate::merged},   {"added-by-rule", Fate::addedByRule},
      {"added", Fate::added},     {"built", Fate::built},
  };
  return meaningOf(kFates, phrase, "What happens");
}

GoesTo goesToFrom(const std::string& phrase) {
  if (phrase == "the same") return {"", "", true};
  const Skeleton skeleton = skeletonOf(phrase);
  if (skeleton.texts.empty()) return {"", phrase, false};
  if (!skeleton.form.starts_with("* of ")) throw std::runtime_error("\"Goes to\" does not know \"" + phrase + "\"");
  return {skeleton.texts.front(), skeleton.form.substr(5), false};
}

std::string nameFrom(const std::string& phrase) {
  const Skeleton skeleton = skeletonOf(phrase);
  if (skeleton.form != "*") throw std::runtime_error("not a name in backquotes: " + phrase);
  return skeleton.texts.front();
}

}  // namespace pages
