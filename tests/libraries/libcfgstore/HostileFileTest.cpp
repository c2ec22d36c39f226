// Whatever the shape of a file, opening it, looking at all of it and changing all of it takes time and memory in
// proportion to its size. Everything is done with a file of each shape and with one that is four times as large: where
// one step looks at everything again, that takes sixteen times as long.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ctime>
#include <functional>

#include "Inspection.h"
#include "Snapshot.h"
#include "TestStore.h"

namespace cfgstore {
namespace {

using test::Strings;
using test::TestStore;

// Of processor time, so that a busy machine does not matter. Less than this is never too long; more is when it is much
// more than four times what the smaller file took.
constexpr double kFewSeconds = 1.5;
constexpr double kMostTimes = 9;

constexpr int kLarge = 100000;

// Times the size of the file, for the store, what it keeps for lookups, and a snapshot. Short lines cost the most.
constexpr std::size_t kMostMemory = 60;

double secondsUsed() {
  timespec now{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

// 0 where another allocator is in place, as with sanitizers.
std::size_t memoryInUse() {
  const auto info = ::mallinfo2();
  return info.uordblks + info.hblkhd;
}

std::size_t size(int n) { return static_cast<std::size_t>(n); }

std::string number(int i) { return std::to_string(i); }

std::string repeated(int times, const std::function<std::string(int)>& make) {
  std::string text;
  for (int i = 0; i < times; ++i) text += make(i);
  return text;
}

std::string foldedAfterEachByte(std::string_view text) {
  std::string folded;
  for (const char c : text) folded.append(1, c).append("\n ");
  folded.resize(folded.size() - 2);
  return folded;
}

std::string inEachLetterCase(int i) {
  std::string name(17, 'a');
  for (std::size_t bit = 0; bit < name.size(); ++bit) {
    if ((i >> bit & 1) != 0) name[bit] = 'A';
  }
  return name;
}

// Values of sixteen bytes that the hash of the GNU standard library maps to one number: the second half takes back
// what the first half did. The arithmetic is that of MurmurHash64A, undone step by step.
class OneHash {
 public:
  // Sixteen bytes, or nothing if they would not stand in a plain line.
  static std::string value(std::uint64_t first) {
    const std::uint64_t before = (kSeed ^ 16 * kFactor ^ mixed(first)) * kFactor;
    const std::uint64_t second = unmixed(before ^ kMeeting);
    std::string text(16, '\0');
    std::memcpy(text.data(), &first, 8);
    std::memcpy(text.data() + 8, &second, 8);
    const bool plain = text.find_first_of(std::string_view("\0\n\r", 3)) == std::string::npos;
    return plain && std::strchr(" :<", text[0]) == nullptr ? text : std::string();
  }

 private:
  static constexpr std::uint64_t kFactor = 0xc6a4a7935bd1e995;
  static constexpr std::uint64_t kSeed = 0xc70f6907;
  static constexpr std::uint64_t kMeeting = 0x123456789abcdef;  // any number

  static std::uint64_t shifted(std::uint64_t x) { return x ^ x >> 47; }
  static std::uint64_t mixed(std::uint64_t word) { return shifted(word * kFactor) * kFactor; }
  static std::uint64_t unmixed(std::uint64_t word) { return shifted(word * inverse()) * inverse(); }
  // Newton's method; each step doubles the bits that are right.
  static std::uint64_t inverse() {
    std::uint64_t x = kFactor;
    for (int i = 0; i < 6; ++i) x *= 2 - kFactor * x;
    return x;
  }
};

Strings valuesOfOneHash(std::size_t count) {
  Strings values;
  for (std::uint64_t i = 1; values.size() < count; ++i) {
    std::string value = OneHash::value(i * 0x9e3779b97f4a7c15);
    if (!value.empty()) values.push_back(std::move(value));
  }
  return values;
}

struct Shape {
  const char* name;
  std::function<std::string(int)> text;  // the larger the number, the longer, in proportion
};

const Shape kShapes[] = {
    {"ManyValuesInOneAttribute",
     [](int n) { return "dn: cn=a\n" + repeated(n, [](int i) { return "a: " + number(i) + "\n"; }); }},
    {"ManyCopiesOfOneValue", [](int n) { return "dn: cn=a\n" + repeated(n, [](int) { return "a: x\n"; }) + "a: y\n"; }},
    {"ManyValuesInBase64",
     [](int n) { return "dn: cn=a\n" + repeated(n, [](int i) { return "a:: " + number(10000000 + i) + "\n"; }); }},
    {"ManyValuesOfOneHash",
     [](int n) {
       std::string text = "dn: cn=a\n";
       for (const std::string& value : valuesOfOneHash(static_cast<std::size_t>(n))) text += "a: " + value + "\n";
       return text;
     }},
    {"ManyAttributesInOneEntry",
     [](int n) { return "dn: cn=a\n" + repeated(n, [](int i) { return "a" + number(i) + ": 1\n"; }); }},
    {"ManyAttributesWithManyOptions",
     [](int n) {
       const std::string options = repeated(30, [](int i) { return ";x-" + number(i); });
       return "dn: cn=a\n" + repeated(n / 10, [&](int i) { return "a" + options + ";y-" + number(i) + ": 1\n"; });
     }},
    {"OneAttributeInEachLetterCase",
     [](int n) {
       return "dn: cn=a\n" + repeated(n, [](int i) { return inEachLetterCase(i) + ": " + number(i) + "\n"; });
     }},
    {"TwoAttributesByTurns",
     [](int n) {
       return "dn: cn=a\n" + repeated(n, [](int i) { return (i % 2 == 0 ? "a: " : "b: ") + number(i) + "\n"; });
     }},
    {"LongLinesWhoseNamesAreFolded",
     [](int n) {
       const std::string value(20000, 'v');
       return "dn: cn=a\n" +
              repeated(n / 500, [&](int i) { return "a" + number(1000 + i) + "\n aaaaaaaa: " + value + "\n"; });
     }},
    {"ManyCommentsAmongValues",
     [](int n) { return "dn: cn=a\n" + repeated(n / 2, [](int i) { return "# c\n  d\na: " + number(i) + "\n"; }); }},
    {"ManyCommentsAndEmptyLinesAmongEntries",
     [](int n) { return repeated(n / 5, [](int i) { return "# c\n\n\n# d\ndn: cn=" + number(i) + "\n# e\n\n"; }); }},
    {"ManyEntriesBelowOneParent",
     [](int n) { return "dn: cn=p\n" + repeated(n, [](int i) { return "\ndn: cn=" + number(i) + ",cn=p\n"; }); }},
    {"ManyEntriesWithoutTheirParents",
     [](int n) { return repeated(n, [](int i) { return "dn: cn=x,cn=" + number(i) + ",cn=configuration\n\n"; }); }},
    {"ManyEntriesAboveTheirParents",
     [](int n) {
       return repeated(n / 2, [](int i) { return "dn: cn=x,cn=" + number(i) + "\n\ndn: cn=" + number(i) + "\n\n"; });
     }},
    {"EntriesInADeepChain",
     [](int n) {
       std::string dn = "cn=configuration";
       return repeated(static_cast<int>(std::sqrt(n) * 2), [&](int i) {
         dn = "cn=" + number(i) + "," + dn;
         return "dn: " + dn + "\ncn: " + number(i) + "\n\n";
       });
     }},
    {"ADnOfManyRdns",
     [](int n) { return "dn: " + repeated(n, [](int i) { return "cn=" + number(i) + ","; }) + "cn=x\nx: 1\n"; }},
    {"AnRdnOfManyPairs",
     [](int n) {
       return "dn: cn=x" + repeated(n / 10, [](int i) { return "+cn=" + number(i); }) + "\n" +
              repeated(n, [](int i) { return "cn: v" + number(i) + "\n"; });
     }},
    {"DnsOfManyEscapes",
     [](int n) {
       const std::string escapes = repeated(n / 4, [](int) { return "\\5C\\,"; });
       return "dn: cn=" + escapes + "\n\ndn: cn=x,cn=" + escapes + "\n\ndn: cn=\"" + std::string(size(n), ';') + "\"\n";
     }},
    {"AValueFoldedAfterEachByte",
     [](int n) { return "dn: cn=a\n" + foldedAfterEachByte("a: " + std::string(size(n), 'x')) + "\n"; }},
    {"ANameFoldedAfterEachByte",
     [](int n) {
       return "dn: cn=a\n" +
              foldedAfterEachByte(std::string(std::min<std::size_t>(size(n), 60000), 'n') + ": " +
                                  std::string(size(n), 'x')) +
              "\n";
     }},
    {"ADnFoldedAfterEachByte",
     [](int n) { return foldedAfterEachByte("dn: cn=" + std::string(size(n), 'x')) + "\na: 1\n"; }},
    {"ACommentFoldedAfterEachByte",
     [](int n) { return foldedAfterEachByte("# " + std::string(size(n), 'x')) + "\ndn: cn=a\na: 1\n"; }},
    {"AValueOfContinuationBytes", [](int n) { return "dn: cn=a\na: " + std::string(size(n), '\x80') + "\n"; }},
    {"ManyEmptyLines", [](int n) { return "dn: cn=a\na: 1\n" + std::string(size(n * 10), '\n') + "dn: cn=b\n"; }},
};

void PrintTo(const Shape& shape, std::ostream* out) { *out << shape.name; }

#ifdef __GLIBCXX__
TEST(HostileValues, HaveOfOneHashWhereThatIsKnown) {
  const Strings values = valuesOfOneHash(100);
  for (const std::string& value : values)
    EXPECT_EQ(std::hash<std::string>()(value), std::hash<std::string>()(values[0]));
}
#endif

using HostileFile = testing::TestWithParam<Shape>;

// Does `work` with the text of a shape and with one that is four times as large.
void expectLinear(const Shape& shape, const std::function<void(const std::string&)>& work) {
  const auto timeOf = [&](int n) {
    const std::string text = shape.text(n);
    const double start = secondsUsed();
    work(text);
    return secondsUsed() - start;
  };
  const double small = timeOf(kLarge / 4);
  const double large = timeOf(kLarge);
  EXPECT_TRUE(large < kFewSeconds || large < kMostTimes * small) << small << " s and then " << large << " s";
}

void openAndKeep(const std::string& text) {
  const std::size_t before = memoryInUse();
  TestStore store(text);
  const Snapshot snapshot(store.store());
  for (std::uint32_t i = 0; i < snapshot.entries().size(); ++i) {
    const SnapshotEntry& entry = snapshot.entries()[i];
    ASSERT_EQ(snapshot.findEntry(entry.normal), i);
    for (std::uint32_t j = 0; j < entry.attributes; ++j) {
      const std::uint32_t attribute = entry.firstAttribute + j;
      ASSERT_EQ(snapshot.findAttribute(i, snapshot.attributes()[attribute].name), attribute);
    }
  }
  EXPECT_TRUE(before == 0 || memoryInUse() - before < kMostMemory * text.size() + 100000) << memoryInUse() - before;
  EXPECT_TRUE(store.text() == text);
}

TEST_P(HostileFile, IsOpenedAndKeptInLinearTimeAndMemory) { expectLinear(GetParam(), openAndKeep); }

TEST_P(HostileFile, IsInspectedInLinearTime) {
  expectLinear(GetParam(), [](const std::string& text) {
    const test::TemporaryDirectory directory;
    const Inspection inspection = inspect(directory.write("a.ldif", text));
    EXPECT_EQ(inspection.errors, 0U);
    EXPECT_GT(inspection.entries, 0U);
  });
}

// Every attribute is walked over and read, all its values but the first are deleted in one call and some are added
// again one by one; then the entries go.
void readAndChange(const std::string& text) {
  TestStore store(text);
  const Strings dns = store.subordinates("", 2).values;
  for (const std::string& dn : dns) {
    for (const std::string& name : store.attributes(dn.c_str())) {
      Strings values = store.values(dn.c_str(), name.c_str()).values;
      ASSERT_FALSE(values.empty());
      ASSERT_TRUE(store.value(dn.c_str(), name.c_str()).value == values.front());
      const std::string first = values.front();
      values.erase(values.begin());
      ASSERT_EQ(store.delValue(dn.c_str(), name.c_str(), values), 0);
      for (const std::string& value : values) ASSERT_EQ(store.addValue(dn.c_str(), name.c_str(), value.c_str()), 0);
      for (const std::string& value : values) ASSERT_EQ(store.delValue(dn.c_str(), name.c_str(), {value}), 0);
      ASSERT_EQ(store.setValue(dn.c_str(), name.c_str(), "x"), 0);
      ASSERT_EQ(store.setValue(dn.c_str(), name.c_str(), first.c_str()), 0);
    }
  }
  const std::size_t some = std::min<std::size_t>(dns.size(), 1000);
  for (std::size_t i = 0; i < some; ++i) {
    ASSERT_EQ(store.addEntry(("cn=new," + dns[i]).c_str(), "new", "y", "z"), 0);
    ASSERT_EQ(store.addEntry(("cn=new,cn=none," + dns[i]).c_str(), "new", "y", "z"), 0);
  }
  const std::size_t entries = Snapshot(store.store()).entries().size();
  EXPECT_EQ(entries, dns.size() + 2 * some);
  for (const std::string& dn : dns) ASSERT_EQ(store.removeEntry(dn.c_str()), 0);
  EXPECT_EQ(Snapshot(store.store()).entries().size(), 2 * some);
}

TEST_P(HostileFile, IsReadAndChangedInLinearTime) { expectLinear(GetParam(), readAndChange); }

INSTANTIATE_TEST_SUITE_P(Of, HostileFile, testing::ValuesIn(kShapes),
                         [](const auto& shape) { return std::string(shape.param.name); });

// An entry that comes and goes again and again leaves nothing behind that a search would have to pass.
TEST(HostileEdits, OfOneEntryThatComesAndGoesCostTheSameEachTime) {
  expectLinear({"", [](int n) { return std::string(size(n), '\n') + "dn: cn=c\ncn: c\n"; }},
               [](const std::string& text) {
                 TestStore store(text);
                 for (std::size_t i = 0; i < 2 * text.size(); ++i) {
                   ASSERT_EQ(store.addEntry("cn=e,cn=c", "e", "top", "x"), 0);
                   ASSERT_EQ(store.removeEntry("cn=e,cn=c"), 0);
                 }
                 EXPECT_TRUE(store.text() == text);
               });
}

const Shape kBadShapes[] = {
    {"LinesWithoutColons", [](int n) { return repeated(n, [](int) { return "bad\n"; }); }},
    {"LinesThatContinueNothing", [](int n) { return repeated(n, [](int) { return "\n x\n"; }); }},
    {"BadBase64", [](int n) { return "dn: cn=a\n" + repeated(n, [](int) { return "a:: x\n"; }); }},
    {"ZeroBytes",
     [](int n) { return std::string(size(n), '\0') + repeated(n, [](int) { return std::string("\0\n", 2); }); }},
    {"CarriageReturns", [](int n) { return std::string(size(n), '\r') + repeated(n, [](int) { return "\r\r\n"; }); }},
    {"DuplicateEntries", [](int n) { return repeated(n, [](int) { return "dn: cn=a\n\n"; }); }},
    {"DnLinesThatRunTogether", [](int n) { return repeated(n, [](int i) { return "dn: cn=" + number(i) + "\n"; }); }},
    {"BadDns", [](int n) { return repeated(n, [](int) { return "dn: bad\n\n"; }); }},
    {"ALongBadDn", [](int n) { return "dn: " + std::string(size(n * 10), '\\') + "\n"; }},
    {"EntriesWithoutDns", [](int n) { return repeated(n, [](int) { return "a: 1\n\n"; }); }},
    {"ChangeRecords",
     [](int n) { return repeated(n, [](int i) { return "dn: cn=" + number(i) + "\nchangetype: add\n\n"; }); }},
    {"NamesThatAreTooLong",
     [](int n) { return repeated(n / 2000, [](int) { return std::string(70000, 'n') + ": 1\n"; }); }},
};

class HostileBadFile : public HostileFile {};

TEST_P(HostileBadFile, IsRefusedInLinearTimeWithAllItsErrorsCounted) {
  expectLinear(GetParam(), [](const std::string& text) {
    EXPECT_FALSE(test::problemsOf(text).empty());
    const test::TemporaryDirectory directory;
    const Inspection inspection = inspect(directory.write("a.ldif", text));
    const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    EXPECT_GE(inspection.errors * 3, lines - 1);
    EXPECT_LE(inspection.remarks.size(), 400U);
  });
}

INSTANTIATE_TEST_SUITE_P(Of, HostileBadFile, testing::ValuesIn(kBadShapes),
                         [](const auto& shape) { return std::string(shape.param.name); });

}  // namespace
}  // namespace cfgstore
