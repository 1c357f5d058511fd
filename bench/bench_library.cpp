// What a library costs to open, to save after a small edit, and to look at. Run by compare.py, which makes
// the files: bench_library FOLDER [benchmark options]. Every *.Atlavex in the folder is measured; a name that
// contains "sealed" is opened with the key that compare.py uses.

#include "component/AtlavexLibrary.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <filesystem>
#include <iostream>

namespace {

constexpr const char* SealedKey = "bench key";
constexpr std::int32_t ViewWidth = 1920;
constexpr std::int32_t ViewHeight = 1080;

using Seconds = std::chrono::duration<double>;

std::string KeyOf(const std::string& file) {
    return file.find("sealed") != std::string::npos ? SealedKey : "";
}

std::unique_ptr<AtlavexLibrary> Load(const std::string& file) {
    auto library = CreateAtlavexLibrary();
    library->LoadFromFile(file, KeyOf(file));
    return library;
}

void Open(benchmark::State& state, const std::string& file) {
    for (auto _ : state)
        benchmark::DoNotOptimize(Load(file)->MapCount());
}

void SaveMetadata(benchmark::State& state, const std::string& file) {
    const auto library = Load(file);
    const auto map = library->GetMap(library->MapIdAt(1));
    int edit = 0;
    for (auto _ : state) {
        map->SetMetadata("author", std::to_string(++edit));
        library->SaveToFile(file, KeyOf(file));
    }
}

double SecondsFor(AtlavexMap& map, std::int32_t left, std::int32_t top) {
    std::shared_ptr<const AtlavexImage> view;
    const auto begin = std::chrono::steady_clock::now();
    map.RenderView(left, top, ViewWidth, ViewHeight, view);
    return Seconds(std::chrono::steady_clock::now() - begin).count();
}

/// A part of the map that was never looked at: every tile is read and decoded.
void ViewCold(benchmark::State& state, const std::string& file, double zoom) {
    for (auto _ : state) {
        const auto library = Load(file);
        const auto map = library->GetMap(library->MapIdAt(1));
        map->SetZoom(zoom);
        state.SetIterationTime(SecondsFor(*map, map->Width() / 3, map->Height() / 3));
    }
}

/// The same part a few pixels further each time: all tiles are at hand.
void ViewWarm(benchmark::State& state, const std::string& file, double zoom) {
    const auto library = Load(file);
    const auto map = library->GetMap(library->MapIdAt(1));
    map->SetZoom(zoom);
    const auto left = static_cast<std::int32_t>(map->Width() / 3 * zoom);
    const auto top = static_cast<std::int32_t>(map->Height() / 3 * zoom);
    for (std::int32_t step = 0; step < 100; step += 50)
        SecondsFor(*map, left + step, top);
    std::int32_t step = 0;
    for (auto _ : state)
        state.SetIterationTime(SecondsFor(*map, left + ++step % 100, top));
}

void Register(const std::filesystem::path& path) {
    const std::string file = path.string(), name = path.stem().string();
    const auto add = [&name](const std::string& what, auto&& function) {
        return benchmark::RegisterBenchmark((what + "/" + name).c_str(), function)
            ->Unit(benchmark::kMillisecond);
    };
    add("open", [file](benchmark::State& state) { Open(state, file); });
    add("save_metadata", [file](benchmark::State& state) { SaveMetadata(state, file); });
    for (const auto& [suffix, zoom] : {std::pair{"1.0", 1.0}, std::pair{"0.7", 0.7}, std::pair{"2.0", 2.0}}) {
        add(std::string("view_cold_") + suffix,
            [file, zoom = zoom](benchmark::State& state) { ViewCold(state, file, zoom); })
            ->UseManualTime()
            ->Iterations(20);
        add(std::string("view_warm_") + suffix,
            [file, zoom = zoom](benchmark::State& state) { ViewWarm(state, file, zoom); })
            ->UseManualTime()
            ->Iterations(200);
    }
}

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (argc != 2) {
        std::cerr << "usage: bench_library FOLDER [benchmark options]\n";
        return 2;
    }
    for (const auto& entry : std::filesystem::directory_iterator(argv[1]))
        if (entry.path().extension() == ".Atlavex")
            Register(entry.path());
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
