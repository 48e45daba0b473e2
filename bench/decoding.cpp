// Decoding a mapping document, compared with two JSON libraries that only parse the same bytes.

#include <benchmark/benchmark.h>
#include <rapidjson/document.h>

#include <cstdlib>
#include <nlohmann/json.hpp>

#include "bench/documents.h"
#include "mapping/decode.h"
#include "mapping/encode.h"

namespace keyvora::bench {
namespace {

template <class Work>
void onDocument(benchmark::State& state, Work work) {
  const auto bytes = encode(document(static_cast<std::size_t>(state.range(0))));
  for (auto _ : state) {
    if (!work(bytes)) std::abort();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}

void decodeMapping(benchmark::State& state) {
  onDocument(state, [](const std::string& bytes) {
    const auto decoded = decode(bytes);
    benchmark::DoNotOptimize(decoded);
    return std::holds_alternative<Mapping>(decoded);
  });
}

void parseWithRapidJson(benchmark::State& state) {
  onDocument(state, [](const std::string& bytes) {
    rapidjson::Document parsed;
    parsed.Parse(bytes.data(), bytes.size());
    benchmark::DoNotOptimize(parsed);
    return !parsed.HasParseError();
  });
}

void parseWithNlohmannJson(benchmark::State& state) {
  onDocument(state, [](const std::string& bytes) {
    const auto parsed = nlohmann::json::parse(bytes, nullptr, false);
    benchmark::DoNotOptimize(parsed);
    return !parsed.is_discarded();
  });
}

void sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->Arg(20)->Arg(200)->Arg(2000)->Arg(20000)->Unit(benchmark::kMicrosecond);
}
BENCHMARK(decodeMapping)->Apply(sizes);
BENCHMARK(parseWithRapidJson)->Apply(sizes);
BENCHMARK(parseWithNlohmannJson)->Apply(sizes);

}  // namespace
}  // namespace keyvora::bench
