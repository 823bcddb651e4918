// The URL handling that every request starts with.

#include <benchmark/benchmark.h>

#include "connection/escape_url.h"
#include "connection/url_components.h"

namespace velandoc {
namespace {

const WideString kUrl = OLESTR("https://docs.example.test:8443/sites/a/Shared/b.xlsx?Web=100");

void BM_CrackUrl(benchmark::State& state) {
  if (kUrl.size() != 60) state.SkipWithError("the URL is to have 60 characters");
  for (auto _ : state) {
    UrlComponents url;
    benchmark::DoNotOptimize(CrackUrl(kUrl.c_str(), url));
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_CrackUrl);

// Bytes are those of the URL as text of one byte a character.
void Escape(benchmark::State& state, WideView text) {
  WideString escaped;
  for (auto _ : state) {
    if (!EscapeUrl(text, escaped)) state.SkipWithError("does not escape");
    benchmark::DoNotOptimize(escaped.data());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void BM_EscapeUrlAscii60(benchmark::State& state) { Escape(state, kUrl); }
BENCHMARK(BM_EscapeUrlAscii60);

void BM_EscapeUrlAscii2000(benchmark::State& state) {
  Escape(state, WideString(OLESTR("http://docs.example.test/")).append(1975, 'a'));
}
BENCHMARK(BM_EscapeUrlAscii2000);

void BM_EscapeUrlAllUnsafe(benchmark::State& state) { Escape(state, WideString(690, ' ')); }
BENCHMARK(BM_EscapeUrlAllUnsafe);

void BM_GetServerRoot(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(GetServerRoot(kUrl.c_str()));
}
BENCHMARK(BM_GetServerRoot);

}  // namespace
}  // namespace velandoc

BENCHMARK_MAIN();
