// The player's files at sizes no game writes but a player may have: a rules file with very many
// games, and a best-score table far past its twenty entries.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include "core/BestScoresFile.h"
#include "core/PlistFile.h"
#include "rules/GameLibrary.h"

namespace {

using namespace tolvar;

std::filesystem::path benchFolder(const char* name) {
    const auto folder = std::filesystem::temp_directory_path() / name;
    std::filesystem::create_directories(folder);
    return folder;
}

// Loading the game menu from a rules file of N small games (a board size each), as a file a
// program made might hold.
void BM_LoadRulesFile(benchmark::State& state) {
    const auto folder = benchFolder("tolvar-bench-rules");
    const std::string path = (folder / "RulesDict.dict").string();
    Dictionary games;
    Dictionary small;
    small.set("BoardWidth", Value::integer(8));
    const Value game = Value::dictionary(std::move(small));
    for (std::int64_t i = 0; i < state.range(0); ++i) games.set("Game " + std::to_string(i), game);
    if (writePropertyListFile(path, Value::dictionary(std::move(games)))) state.SkipWithError("not written");
    for (auto _ : state) {
        GameLibrary library;
        if (!library.loadRulesFromFile(path)) state.SkipWithError("not loaded");
        benchmark::DoNotOptimize(library.gameMenu().size());
    }
    state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(path));
    std::filesystem::remove_all(folder);
}
BENCHMARK(BM_LoadRulesFile)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

// A new best score entered in a table that holds N entries: read, placed first, saved.
void BM_EnterBestScore(benchmark::State& state) {
    const auto folder = benchFolder("tolvar-bench-best");
    BestScoresFile store(folder.string());
    Array table;
    Dictionary entry;
    entry.set("Score", Value::integer(100));
    entry.set("Date", Value::date(Date::now()));
    for (std::int64_t i = 0; i < state.range(0); ++i) table.push_back(Value::dictionary(entry));
    Dictionary games;
    games.set("Vexamor", Value::array(std::move(table)));
    const std::string bytes = toXmlPropertyList(Value::dictionary(std::move(games)));
    for (auto _ : state) {
        state.PauseTiming();
        if (writeFileAtomically(store.path(), bytes)) state.SkipWithError("not written");
        state.ResumeTiming();
        const EnteredScore entered = store.enterScore("Vexamor", [&](Array& t) {
            t.insert(t.begin(), Value::dictionary(entry));
            return 0;
        });
        if (entered.saveError) state.SkipWithError("not saved");
    }
    std::filesystem::remove_all(folder);
}
BENCHMARK(BM_EnterBestScore)->Arg(20)->Arg(10000)->Arg(400000)->Unit(benchmark::kMillisecond);

}  // namespace
