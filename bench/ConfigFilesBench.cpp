// Configuration files of the catalog of 5,000 options with images of 16,383
// bytes: saving one (the document with its list of shown options, the JSON,
// the atomic write with its flush to the disk), opening it again (reading,
// parsing, checking, loading the catalog), and comparing two configurations
// option by option.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "CatalogGenerator.h"
#include "config/Catalog.h"
#include "config/ConfigTool.h"
#include "configfiles/ConfigCompare.h"
#include "configfiles/ConfigFile.h"

namespace {

const sb::DeviceInfo& Device() {
    static const sb::DeviceInfo device = [] {
        sb::DeviceInfo d;
        d.InfoFile = sb::bench::GenerateCatalog();
        d.SN = "BENCH0001";
        std::string reason;
        if (!sb::LoadCatalog(d, reason)) d.Options.Items.clear();
        return d;
    }();
    return device;
}

std::string FilePath() {
    static const std::filesystem::path folder = [] {
        auto path = std::filesystem::temp_directory_path() / ("servicebay-bench-" + std::to_string(::getpid()));
        std::filesystem::create_directories(path);
        return path;
    }();
    return (folder / "bench.sbconf").string();
}

bool Ready(benchmark::State& state) {
    if (!Device().Options.Items.empty()) return true;
    state.SkipWithError("the generated catalog does not load");
    return false;
}

void SaveConfigFile(benchmark::State& state) {
    if (!Ready(state)) return;
    const std::string& image = Device().PredefCfgs.Items[0].Data;
    for (auto _ : state) sb::WriteConfigFile(FilePath(), sb::MakeConfigDocument(Device(), image));
    state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(FilePath()));
}

void OpenConfigFile(benchmark::State& state) {
    if (!Ready(state)) return;
    sb::WriteConfigFile(FilePath(), sb::MakeConfigDocument(Device(), Device().PredefCfgs.Items[0].Data));
    for (auto _ : state) {
        const sb::LoadedConfig config = sb::ReadConfigFile(FilePath());
        benchmark::DoNotOptimize(config.Device.Options.Items.data());
    }
    state.counters["options"] = Device().Options.Count();
}

void CompareAllOptions(benchmark::State& state) {
    if (!Ready(state)) return;
    const std::string& a = Device().PredefCfgs.Items[0].Data;
    const std::string& b = Device().PredefCfgs.Items[1].Data;
    size_t differing = 0;
    for (auto _ : state) {
        const sb::ConfigComparison comparison =
            sb::CompareConfigurations(Device(), a, Device(), b, sb::CompareMode::All);
        differing = comparison.Options.size();
    }
    state.counters["options"] = static_cast<double>(differing);
}

}  // namespace

BENCHMARK(SaveConfigFile)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(OpenConfigFile)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(CompareAllOptions)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    std::error_code ignored;
    std::filesystem::remove_all(std::filesystem::path(FilePath()).parent_path(), ignored);
    return 0;
}
