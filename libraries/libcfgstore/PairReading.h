// PairReading.h -- two files that hold much alike are read at once, and what both hold is taken apart once.
//
// Each of two threads reads one of the files, in two halves: one of them the lower half first and then the upper, the
// other the upper half first. When a thread comes to its second half, the other one has just taken apart the same half
// of its own file: of an entry that stands there with the same bytes below the dn line, only the text is kept. Whether
// it was read like this can be seen in nothing but the time, and in Document::takeApart.

#ifndef CFGMIG_LIBCFGSTORE_PAIRREADING_H
#define CFGMIG_LIBCFGSTORE_PAIRREADING_H

#include <array>
#include <cstddef>
#include <future>
#include <string_view>

namespace cfgstore {

class Document;
struct LdifContent;

// Lives longer than its two turns. Each of these has to be taken, in a thread of its own, or the pair be given up:
// either waits for what the other has read.
class PairReading {
 public:
  enum class Side : std::size_t { lowerFirst, upperFirst };

  PairReading();
  PairReading(const PairReading&) = delete;
  PairReading& operator=(const PairReading&) = delete;

  // Nobody reads in turns; to be called before anybody has begun to.
  void giveUp() { m_isGivenUp = true; }

  // While it lives, the first document that is read in this thread is this side of the pair. With `learnsHabits`, its
  // habits are learned (learnHabits) while both texts are at hand.
  class Turn {
   public:
    Turn(PairReading& pair, Side side, bool learnsHabits);
    ~Turn();
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    Side side() const { return m_side; }
    bool learnsHabits() const { return m_learnsHabits; }

    // The turn of this thread, for the one who asks first; null if there is none. Either an exchange follows, or the
    // turn is passed on.
    static Turn* take();
    void pass() noexcept;

   private:
    friend class PairReading;
    PairReading& m_pair;
    Side m_side;
    bool m_learnsHabits;
    bool m_isOver = false;
  };

  // What one side has read.
  struct Read {
    const Document* document = nullptr;    // that is being read
    const LdifContent* content = nullptr;  // of the first half; null if there is nothing to show
  };

  // While it lives, either side sees what the other has of its first half. It waits for that in the beginning, and in
  // the end until the other needs this side's no more.
  class Exchange {
   public:
    Exchange(Turn& turn, Read mine);
    ~Exchange();
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;
    const Read& theirs() const { return m_theirs; }

   private:
    Turn& m_turn;
    Read m_theirs;
  };

 private:
  struct Half {
    std::promise<Read> read;
    std::future<Read> wasRead = read.get_future();
    std::promise<void> end;
    std::future<void> reachedEnd = end.get_future();
  };

  Half& of(Side side) { return m_halves[static_cast<std::size_t>(side)]; }
  static Side otherThan(Side side) { return side == Side::lowerFirst ? Side::upperFirst : Side::lowerFirst; }

  std::array<Half, 2> m_halves;
  bool m_isGivenUp = false;
};

// Where the upper half of a text begins: at a dn line behind an empty line, about in the middle. std::string_view::npos
// if there is none.
std::size_t upperHalfOf(std::string_view text);

// Puts the content of the upper half behind that of the lower one. False, and of no use any more, if it does not go
// together: an entry stands in both, or there are too many lines.
bool join(LdifContent& lower, const LdifContent& upper);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_PAIRREADING_H
