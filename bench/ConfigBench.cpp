// The configuration model on a catalog of 5,000 options and images of
// 16,383 bytes: loading the catalog, the first build of the in-memory option
// tree, and one option change followed by the update of the tree in place.
#include <benchmark/benchmark.h>

#include <string>

#include "CatalogGenerator.h"
#include "config/Catalog.h"
#include "config/ConfigTool.h"
#include "config/MemoryOptionTree.h"

namespace {

const std::string& Catalog() {
    static const std::string text = sb::bench::GenerateCatalog();
    return text;
}

// False (with the benchmark marked failed) when the catalog doesn't load.
bool Load(benchmark::State& state, sb::DeviceInfo& device) {
    device.InfoFile = Catalog();
    std::string reason;
    if (sb::LoadCatalog(device, reason)) return true;
    state.SkipWithError(("the generated catalog does not load: " + reason).c_str());
    return false;
}

void LoadCatalog(benchmark::State& state) {
    sb::DeviceInfo device;
    for (auto _ : state) {
        if (!Load(state, device)) break;
        benchmark::DoNotOptimize(device.Options.Items.data());
    }
    state.counters["options"] = device.Options.Count();
    state.counters["bytes"] = static_cast<double>(Catalog().size());
}

void FirstBuild(benchmark::State& state) {
    sb::DeviceInfo device;
    if (!Load(state, device)) return;
    const std::string image = device.PredefCfgs.Items[0].Data;
    sb::MemoryOptionTree tree;
    for (auto _ : state) {
        state.PauseTiming();
        tree.Clear();
        state.ResumeTiming();
        if (!sb::BuildOptionTree(image, device, tree)) state.SkipWithError("no configuration for the image");
    }
    state.counters["nodes"] = static_cast<double>(tree.Size());
}

void SetAndRebuild(benchmark::State& state) {
    sb::DeviceInfo device;
    if (!Load(state, device)) return;
    std::string image = device.PredefCfgs.Items[0].Data;
    sb::MemoryOptionTree tree;
    sb::BuildOptionTree(image, device, tree);
    const size_t nodes = tree.Size();
    // An INT option near the end of the image, switched between two values.
    const sb::OptionRec& option = device.Options.Items[4995];
    bool flip = false;
    for (auto _ : state) {
        std::string value = (flip = !flip) ? "00000003" : "00000004";
        sb::SetOptionValue(image, option, value);
        sb::BuildOptionTree(image, device, tree);
    }
    if (tree.Size() != nodes) state.SkipWithError("the update in place added nodes");
}

}  // namespace

BENCHMARK(LoadCatalog)->Unit(benchmark::kMillisecond);
BENCHMARK(FirstBuild)->Unit(benchmark::kMillisecond);
BENCHMARK(SetAndRebuild)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
