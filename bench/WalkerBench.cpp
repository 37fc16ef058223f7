// The inner pieces of a walk without the system's share: a tree in memory, bulk records, paths.
#include <benchmark/benchmark.h>
#include <cstring>
#include <string>
#include <vector>

#include "fakes/MemoryLister.h"
#include "platform/posix/BulkRecords.h"
#include "scanners/walker/Walker.h"

namespace {

using namespace pellak;

/// 1,000 folders of as many files as the argument says.
void fill(fakes::MemoryLister& lister, std::int64_t files) {
  lister.carriesAttributes = true;
  for (int i = 0; i < 1000; ++i) {
    const std::string folder = "/r/" + std::to_string(i / 40) + "/" + std::to_string(i);
    for (std::int64_t k = 0; k < files; ++k) lister.file(folder + "/file" + std::to_string(k), k);
  }
}

void BM_TreeSize(benchmark::State& state) {
  fakes::MemoryLister lister;
  fill(lister, state.range(0));
  const walker::Ambiente ambiente{lister, {}};
  for (auto _ : state) benchmark::DoNotOptimize(walker::treeSize(ambiente, "/r"));
  state.SetItemsProcessed(state.iterations() * 1000 * state.range(0));
}
BENCHMARK(BM_TreeSize)->Arg(1)->Arg(10)->Arg(100);

void BM_ParallelWalk(benchmark::State& state) {
  fakes::MemoryLister lister;
  fill(lister, 50);
  const walker::Ambiente ambiente{lister, {}};
  walker::Filtro filtro;
  filtro.minBytes = state.range(0);
  const std::vector<std::string> roots = {"/r"};
  const auto keep = [](std::string_view p, const struct stat&) {
    return std::optional(std::string(p));
  };
  for (auto _ : state) {
    benchmark::DoNotOptimize(walker::parallelWalk(ambiente, roots, filtro, {}, keep));
  }
  state.SetItemsProcessed(state.iterations() * 50000);
}
BENCHMARK(BM_ParallelWalk)->Arg(0)->Arg(49)->Arg(1000)->UseRealTime();

/// What a walk costs when there is next to nothing to walk.
void BM_SmallWalk(benchmark::State& state) {
  fakes::MemoryLister lister;
  lister.file("/r/f", 1);
  const walker::Ambiente ambiente{lister, {}};
  const std::vector<std::string> roots = {"/r"};
  for (auto _ : state) benchmark::DoNotOptimize(walker::measureTrees(ambiente, roots));
}
BENCHMARK(BM_SmallWalk)->UseRealTime();

void BM_BulkRecords(benchmark::State& state) {
  constexpr std::size_t kCount = 1000;
  constexpr std::size_t kRecord = 96;
  std::vector<std::byte> buffer(kCount * kRecord);
  const std::uint32_t head[] = {kRecord, bulk::kCommonMask, 0, 0, bulk::kFileMask, 0, 64, 8};
  for (std::size_t i = 0; i < kCount; ++i) {
    std::byte* record = buffer.data() + i * kRecord;
    std::memcpy(record, head, sizeof head);
    std::memcpy(record + 24 + 64, "file.js", 8);
  }
  EntryBatch batch;
  for (auto _ : state) {
    batch.clear();
    if (!bulk::parse(buffer, kCount, batch)) state.SkipWithError("broken records");
  }
  state.SetItemsProcessed(state.iterations() * kCount);
}
BENCHMARK(BM_BulkRecords);

}  // namespace
