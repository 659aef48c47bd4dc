// What the rule engine costs on boards from 8 x 8 to 255 x 255.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "BenchMain.h"
#include "engine/Board.h"
#include "engine/BoardActions.h"
#include "engine/BoardLayout.h"
#include "engine/BoardSetup.h"
#include "engine/Completion.h"
#include "core/BestScoresFile.h"
#include "engine/Engine.h"
#include "engine/EngineContext.h"
#include "engine/GameSnapshot.h"
#include "engine/MovePreview.h"
#include "engine/RandomSequence.h"
#include "engine/StandInShell.h"
#include "rules/BuiltinGames.h"
#include "rules/GameLibrary.h"
#include "rules/RulesDict.h"

namespace {

using namespace tolvar;

// The engine's diagnostic lines go to /dev/null while a benchmark runs; the results are
// printed after it returns.
class Silence {
public:
    Silence() {
        std::fflush(stdout);
        saved_ = dup(1);
        const int null = open("/dev/null", O_WRONLY);
        dup2(null, 1);
        close(null);
    }
    ~Silence() {
        std::fflush(stdout);
        dup2(saved_, 1);
        close(saved_);
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    int saved_;
};

Value builtin(int which) {
    return which == 1 ? createTestGameOne() : which == 2 ? createTestGameTwo() : createTestGameThree();
}

// The parts of the engine with a desktop that shows nothing.
struct BenchGame {
    StandInHost host;
    StandInView view{host};
    EngineContext ctx{view, host};
};

// The records of a built-in game on a board of size x size, set up from a fixed seed.
void installGame(EngineContext& ctx, int which, int size) {
    Value rules = builtin(which);
    rules.asDictionary()->set("BoardWidth", Value::integer(size));
    rules.asDictionary()->set("BoardHeight", Value::integer(size));
    ActionsMenu menu;
    ctx.gameInfo = createStructsFromRulesDict(&rules, menu, ctx.out);
    ctx.random.seed(12345);
    setupGame(*ctx.gameInfo, ctx.view, ctx.random, ctx.out);
}

// A board on which no move is left for any of the games, so the completion test looks at
// every cell: colours (x + 2y) mod 8 have no neighbour of the same colour, and no swap of
// neighbours lines up three.
void noMoveBoard(GameInfo& game) {
    GameInfo* gameInfo = &game;
    for (BoardPiece& p : gameInfo->board) {
        p.pieceID = p.x * gameInfo->boardHeight + p.y + 1;
        p.colorIndex = static_cast<std::uint8_t>((p.x + 2 * p.y) % 8 + 1);
    }
}

void completion(benchmark::State& state, bool worstCase) {
    Silence quiet;
    BenchGame b;
    std::unique_ptr<GameInfo>& gameInfo = b.ctx.gameInfo;
    const int which = static_cast<int>(state.range(0));
    const int size = static_cast<int>(state.range(1));
    installGame(b.ctx, which, size);
    if (worstCase) noMoveBoard(*gameInfo);
    EngineContext& ctx = b.ctx;
    Completion test(ctx);
    for (auto _ : state) {
        test.performActionCheckForGameCompletion();
        gameInfo->eventQueue.reset();
    }
    state.counters["ns_per_cell"] = benchmark::Counter(
        static_cast<double>(size) * size, benchmark::Counter::kIsIterationInvariantRate |
                                              benchmark::Counter::kInvert);
    state.SetLabel(gameInfo->gameName);
}

void BM_CompletionRandomBoard(benchmark::State& state) { completion(state, false); }
void BM_CompletionNoMoveLeft(benchmark::State& state) { completion(state, true); }

void sizes(benchmark::internal::Benchmark* b) {
    for (int game = 1; game <= 3; ++game)
        for (int size : {8, 64, 255}) b->Args({game, size});
    b->Unit(benchmark::kMicrosecond);
}
BENCHMARK(BM_CompletionRandomBoard)->Apply(sizes);
BENCHMARK(BM_CompletionNoMoveLeft)->Apply(sizes);

// One pass of line resolution over a fresh board (no line), one that removes a planted line of
// four, and one that removes a line as long as the board is wide; none refills.
void BM_ResolveMatches(benchmark::State& state) {
    Silence quiet;
    BenchGame b;
    std::unique_ptr<GameInfo>& gameInfo = b.ctx.gameInfo;
    const int size = static_cast<int>(state.range(0));
    const int planted = state.range(1) == 2 ? size : state.range(1) == 1 ? 4 : 0;
    installGame(b.ctx, 3, size);
    const std::vector<BoardPiece> fresh = gameInfo->board;
    EngineContext& ctx = b.ctx;
    BoardActions actions(ctx);
    for (auto _ : state) {
        state.PauseTiming();
        gameInfo->board = fresh;
        gameInfo->eventQueue.reset();
        for (int x = 0; x < planted; ++x) gameInfo->board[x * size + size / 2].colorIndex = 9;
        state.ResumeTiming();
        actions.performActionResolveMatches();
    }
    state.counters["ns_per_cell"] = benchmark::Counter(
        static_cast<double>(size) * size, benchmark::Counter::kIsIterationInvariantRate |
                                              benchmark::Counter::kInvert);
}
BENCHMARK(BM_ResolveMatches)
    ->Args({8, 0})->Args({64, 0})->Args({255, 0})
    ->Args({8, 1})->Args({64, 1})->Args({255, 1})
    ->Args({8, 2})->Args({64, 2})->Args({255, 2})
    ->Unit(benchmark::kMicrosecond);

// Falling pieces after a quarter of the cells were emptied.
void BM_FallingPieces(benchmark::State& state) {
    Silence quiet;
    BenchGame b;
    std::unique_ptr<GameInfo>& gameInfo = b.ctx.gameInfo;
    EngineContext& ctx = b.ctx;
    const int size = static_cast<int>(state.range(0));
    installGame(b.ctx, 1, size);
    ctx.random.seed(99);
    for (BoardPiece& p : gameInfo->board)
        if (ctx.random.next() % 4 == 0) p.pieceID = 0;
    const std::vector<BoardPiece> holed = gameInfo->board;
    BoardActions actions(ctx);
    for (auto _ : state) {
        state.PauseTiming();
        gameInfo->board = holed;
        state.ResumeTiming();
        actions.performActionCollapseInDirection(kDirectionDown);
    }
}
BENCHMARK(BM_FallingPieces)->Arg(8)->Arg(64)->Arg(255)->Unit(benchmark::kMicrosecond);

// The region count of a one-colour 255 x 255 board: one region of 65,025 pieces.
void BM_RegionCountOneColour(benchmark::State& state) {
    BenchGame b;
    std::unique_ptr<GameInfo>& gameInfo = b.ctx.gameInfo;
    {
        Silence quiet;
        installGame(b.ctx, 1, 255);
    }
    for (BoardPiece& p : gameInfo->board) p.colorIndex = 2;
    Board board(*gameInfo, b.ctx.out);
    Flags flags = board.makeFlags();
    for (auto _ : state) {
        flags.clear();
        benchmark::DoNotOptimize(board.getRegionColorCountForPiece(board.getBoardPieceAtX(127, 127), flags));
    }
}
BENCHMARK(BM_RegionCountOneColour)->Unit(benchmark::kMicrosecond);

// What undo costs a move: the snapshot taken before it and the comparison after it that tells
// whether the move changed the game ("Vexamor" rules).
void BM_MoveSnapshot(benchmark::State& state) {
    BenchGame b;
    {
        Silence quiet;
        installGame(b.ctx, 1, static_cast<int>(state.range(0)));
    }
    EngineContext& ctx = b.ctx;
    for (auto _ : state) {
        const GameSnapshot before = takeSnapshot(ctx);
        benchmark::DoNotOptimize(before.sameGameAs(ctx));
    }
}
BENCHMARK(BM_MoveSnapshot)->Arg(8)->Arg(64)->Arg(255)->Unit(benchmark::kMicrosecond);

// What the hover preview costs: one move played with all its events on a copy of a freshly dealt
// built-in game (0 Vexamor 8 x 8, a click and the space bar; 1 Trindle 12 x 12 and 2 Glimmet 8 x 8,
// a drag to the right-hand neighbour), cycling over every cell of the board.
void BM_PreviewMove(benchmark::State& state) {
    const int which = static_cast<int>(state.range(0));
    const Value rules = which == 0 ? createTestGameOne() : which == 1 ? createTestGameTwo() : createTestGameThree();
    StandInHost host;
    StandInView view(host);
    Engine engine(view, host, GameOutput::discarded());
    ActionsMenu menu;
    engine.seedBoardPicks(1);
    engine.startGame(&rules, menu);
    engine.processEvents();
    const GameInfo& game = *engine.game();
    const BoardLayout layout = computeBoardLayout(game);
    const auto x = [&](std::uint32_t column) { return layout.left + (static_cast<float>(column) + 0.5f) * layout.w; };
    const auto y = [&](std::uint32_t row) { return layout.m + (static_cast<float>(row) + 0.5f) * layout.h; };
    const std::uint32_t cells = static_cast<std::uint32_t>(game.board.size());
    std::uint32_t cell = 0, moves = 0;
    for (auto _ : state) {
        const std::uint32_t column = cell / game.boardHeight, row = cell % game.boardHeight;
        const auto preview = which == 0 ? engine.previewClick(x(column), y(row))
                                        : engine.previewDrag(x(column), y(row), x(column + 1), y(row));
        moves += preview.has_value();
        benchmark::DoNotOptimize(preview);
        cell = (cell + 1) % cells;
    }
    state.counters["moves"] = benchmark::Counter(moves, benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_PreviewMove)->DenseRange(0, 2)->Unit(benchmark::kMicrosecond);

// A whole game of the small line-swap scenario, from its script, through the engine facade.
void BM_WholeGameFromScript(benchmark::State& state) {
    Silence quiet;
    const std::string dir = TOLVAR_SCENARIO_DIR;
    std::ifstream scriptFile(dir + "/glimmet.script");
    std::vector<std::string> lines;
    for (std::string line; std::getline(scriptFile, line);) lines.push_back(line);
    std::ifstream seedFile(dir + "/glimmet.seed");
    unsigned seed = 1;
    seedFile >> seed;
    GameLibrary library;
    library.loadRulesFromFile(dir + "/glimmet-5x5.dict");
    library.selectGame("Glimmet");
    const auto folder = std::filesystem::temp_directory_path() / "tolvar-bench-scores";
    for (auto _ : state) {
        state.PauseTiming();
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
        state.ResumeTiming();
        BestScoresFile scores(folder.string());
        StandInHost host(scores);
        StandInView view(host);
        ActionsMenu menu;
        Engine engine(view, host);
        engine.seedBoardPicks(seed);
        auto pointer = [&](std::int64_t type, float x, float y) {
            CurrentEvent event;
            event.type = type;
            event.x = x;
            event.y = y;
            engine.takeInput(event);
        };
        for (const std::string& line : lines) {
            std::istringstream words(line);
            std::string command;
            words >> command;
            if (command == "start") {
                engine.startGame(library.currentRules(), menu);
            } else if (command == "tick") {
                engine.processEvents();
            } else if (command == "drag") {
                float x1, y1, x2, y2;
                words >> x1 >> y1 >> x2 >> y2;
                pointer(kEventTypeMouseDown, x1, y1);
                pointer(kEventTypeMouseUp, x2, y2);
            }
        }
        if (!engine.gamePaused()) state.SkipWithError("the game did not end");
    }
    std::filesystem::remove_all(folder);
}
BENCHMARK(BM_WholeGameFromScript)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    // The rules loader makes the data folder: keep it out of the user's own.
    const auto home = std::filesystem::temp_directory_path() / "tolvar-bench-home";
    setenv("XDG_DATA_HOME", home.c_str(), 1);
    return tolvar::bench::runBenchmarks(argc, argv, "bench_engine",
                                        "Times the rule engine: the completion test, line resolution, falling pieces,\n"
                                        "the region count, the preview of a move, a whole game played from a script, and\n"
                                        "loading and saving big files.");
}
