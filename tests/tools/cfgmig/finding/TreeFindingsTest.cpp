#include "FindingFixture.h"

namespace {

using namespace finding_test;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(DnsWithoutEntry, AreThoseBelowTheRootThatNoEntryHas) {
  const std::string lines = "zor-a: cn=Gone,cn=Configuration\nzor-b: cn = gone too , CN=CONFIGURATION \n";
  const SampleLedger sample(kRoot + entry("A", lines), kRoot, kRoot + entry("A", lines));
  EXPECT_THAT(values(sample, "dn-without-entry"), testing::SizeIs(2));
  EXPECT_THAT(whats(sample, "dn-without-entry"), ElementsAre("cn=A,cn=Configuration: zor-a, zor-b"));
}

TEST(DnsWithoutEntry, AreNotDnsOfEntriesOrOfOtherTreesOrOtherTexts) {
  const std::string lines =
      "zor-a: CN=a, cn=configuration\nzor-b: cn=x,o=Acme\nzor-c: see cn=x,cn=configuration\n"
      "zor-d: cn=configuration\nzor-e: the configuration\nzor-f: cn=myconfiguration\n";
  const SampleLedger sample(kRoot + entry("A", lines), kRoot, kRoot + entry("A", lines));
  EXPECT_THAT(values(sample, "dn-without-entry"), IsEmpty());
}

TEST(DnsWithoutEntry, AreNotTheNewServersOwnThatNeverHadOne) {
  const std::string lines = "zor-a: cn=Gone,cn=Configuration\n";
  const SampleLedger never(kRoot, kRoot + entry("A", lines), kRoot + entry("A", lines));
  EXPECT_THAT(values(never, "dn-without-entry"), IsEmpty());
  const SampleLedger taken(kRoot, kRoot + entry("A", lines) + entry("Gone", ""), kRoot + entry("A", lines));
  EXPECT_THAT(values(taken, "dn-without-entry"), ElementsAre("cn=Gone,cn=Configuration"));
}

TEST(EntriesWithoutParent, AreThoseThatTheMergeAdded) {
  const std::string child = "\ndn: cn=X,cn=Gone,cn=Configuration\nobjectClass: top\ncn: X\n";
  const SampleLedger sample(kRoot + child, kRoot, kRoot + child);
  EXPECT_THAT(whats(sample, "entry-without-parent"), ElementsAre("cn=X,cn=Gone,cn=Configuration"));
}

TEST(EntriesWithoutParent, AreNotThoseWithAParentOrOutsideOrAlwaysSo) {
  const std::string child = "\ndn: cn=X,cn=A,cn=Configuration\nobjectClass: top\ncn: X\n";
  const SampleLedger whole(kRoot + entry("A", "") + child, kRoot, kRoot + child + entry("A", ""));
  EXPECT_THAT(whats(whole, "entry-without-parent"), IsEmpty());
  const std::string outside = "\ndn: cn=X,o=Acme\nobjectClass: top\ncn: X\n";
  const SampleLedger elsewhere(kRoot + outside, kRoot, kRoot + outside);
  EXPECT_THAT(whats(elsewhere, "entry-without-parent"), IsEmpty());
  const SampleLedger always(kRoot, kRoot + child, kRoot + child);
  EXPECT_THAT(whats(always, "entry-without-parent"), IsEmpty());
}

}  // namespace
