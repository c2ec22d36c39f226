// dn_bench.cpp -- the normal form of DNs of every kind, and how it grows with their length.

#include <cstdlib>
#include <string>
#include <string_view>

#include "CfgUtils.h"
#include "NormalDn.h"
#include "timing.h"

namespace {

struct Spelling {
  const char* kind;
  const char* dn;
};

constexpr Spelling kSpellings[] = {
    {"normal already", "CN=SETTING 4711,CN=GROUP 9,CN=CONFIGURATION"},
    {"as people write it", "cn=Setting 4711, cn=Group 9, cn=Configuration"},
    {"in quotes, other separators", "cn=\"Setting 4711\" ; cn = Group 9; cn=Configuration"},
    {"escapes", "cn=Setting\\2C 4711, cn=Group\\+9, cn=Configuration"},
    {"beyond ASCII",
     "cn=Z\xC3\xBCrich, ou=Stra\xC3\x9F"
     "e, cn=Configuration"},
    {"two pairs in an RDN", "cn=Setting 4711+uid=9, cn=Group 9, cn=Configuration"},
};

void normalForm(benchmark::State& state, const Spelling& spelling) {
  if (!cfgstore::normalDn(spelling.dn)) return state.SkipWithError("not a DN");
  for (auto _ : state) benchmark::DoNotOptimize(cfgstore::normalDn(spelling.dn));
}

// Against the normal form, as a lookup by another spelling does it.
void same(benchmark::State& state, const Spelling& spelling) {
  const std::string normal = cfgstore::normalDn(spelling.dn).value_or("");
  if (!cfgstore::sameDn(spelling.dn, normal)) return state.SkipWithError("not the same");
  for (auto _ : state) benchmark::DoNotOptimize(cfgstore::sameDn(spelling.dn, normal));
}

void formatDnOfOneSpelling(benchmark::State& state, const Spelling& spelling) {
  for (auto _ : state) std::free(formatDn(spelling.dn));
}

void compareDnsOfOneSpelling(benchmark::State& state, const Spelling& spelling) {
  for (auto _ : state) benchmark::DoNotOptimize(compareDns(spelling.dn, kSpellings[0].dn));
}

std::string longDn(std::int64_t parts, std::string_view separator) {
  std::string dn = "cn=Configuration";
  for (std::int64_t i = 1; i < parts; ++i) dn.append(separator).append("cn=Entry ").append(std::to_string(i));
  return dn;
}

void ofManyRdns(benchmark::State& state) {
  const std::string dn = longDn(state.range(0), ", ");
  for (auto _ : state) benchmark::DoNotOptimize(cfgstore::normalDn(dn));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(ofManyRdns)->Range(1, 16384)->Complexity();

void ofManyPairsInOneRdn(benchmark::State& state) {
  const std::string dn = longDn(state.range(0), "+");
  for (auto _ : state) benchmark::DoNotOptimize(cfgstore::normalDn(dn));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(ofManyPairsInOneRdn)->Range(1, 16384)->Complexity();

void ofOneLongValue(benchmark::State& state) {
  const std::string dn = "cn=" + std::string(static_cast<std::size_t>(state.range(0)), 'x');
  for (auto _ : state) benchmark::DoNotOptimize(cfgstore::normalDn(dn));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(ofOneLongValue)->Range(1, 1 << 20)->Complexity();

}  // namespace

int main(int argc, char** argv) {
  for (const Spelling& each : kSpellings) {
    const auto named = [&each](const char* what) { return std::string(what) + "/" + each.kind; };
    benchmark::RegisterBenchmark(named("normalDn").c_str(), normalForm, each);
    benchmark::RegisterBenchmark(named("sameDn").c_str(), same, each);
    benchmark::RegisterBenchmark(named("formatDn").c_str(), formatDnOfOneSpelling, each);
    benchmark::RegisterBenchmark(named("compareDns").c_str(), compareDnsOfOneSpelling, each);
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
}
