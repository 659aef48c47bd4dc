// The time of one full frame (drawBoard) of each built-in game, and of a frame in which one piece
// changed, with the background image, on whatever OpenGL the display offers (Mesa's software
// renderer under Xvfb). glFinish after each frame makes the figure the whole drawing, not just the
// queuing of commands; the CPU column is the whole process, the renderer's own threads included.
#include <GL/gl.h>
#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>
#include <string>

#include "BenchMain.h"
#include "BuiltinBoards.h"
#include "GlTestWindow.h"

namespace {

using namespace tolvar;

// Starts the game in a fresh view on the test window and draws its first frame (the model is read
// and sized then), then hands the view to the timed frames; a game that cannot start skips the
// benchmark and says why.
template <typename Frames>
void timeFramesOf(benchmark::State& state, const std::string& name, bool withBackground, Frames frames) {
    std::string why;
    if (!test::openTestWindow(why)) {
        state.SkipWithError(("no OpenGL window: " + why).c_str());
        return;
    }
    StandInHost host;
    test::CountingWindow window;
    GameView view(host, window.callbacks());
    if (withBackground) view.loadBGTexture();
    RandomSequence random;
    const std::unique_ptr<GameInfo> gameInfo = bench::startBuiltinGame(name, view, random);
    if (!gameInfo) {
        state.SkipWithError(("cannot start " + name).c_str());
        return;
    }
    view.drawBoard(*gameInfo);
    glFinish();
    frames(view, *gameInfo);
}

void drawBoardOf(benchmark::State& state, const std::string& name, bool withBackground) {
    timeFramesOf(state, name, withBackground, [&](GameView& view, GameInfo& game) {
        for (auto _ : state) {
            view.setNeedsDisplay();
            view.drawBoard(game);
            glFinish();
        }
        state.counters["cells"] = static_cast<double>(game.board.size());
    });
}

// One piece changes colour on every frame: only its cell's patch is drawn again.
void drawOneCellOf(benchmark::State& state, const std::string& name) {
    timeFramesOf(state, name, true, [&](GameView& view, GameInfo& game) {
        BoardPiece& piece = game.board[game.board.size() / 2];
        for (auto _ : state) {
            piece.red = piece.red > 0.5f ? 0.0f : 1.0f;
            view.drawBoard(game);
            glFinish();
        }
    });
}

BENCHMARK_CAPTURE(drawBoardOf, Vexamor, std::string("Vexamor"), true)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(drawBoardOf, Trindle, std::string("Trindle"), true)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(drawBoardOf, Glimmet, std::string("Glimmet"), true)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(drawOneCellOf, VexamorOneCell, std::string("Vexamor"))->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(drawBoardOf, VexamorBlackBackground, std::string("Vexamor"), false)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();

}  // namespace

int main(int argc, char** argv) {
    return tolvar::bench::runBenchmarks(argc, argv, "bench_presentation",
                                        "Times a full frame of each built-in game and a frame in which one piece\n"
                                        "changed, on the display's OpenGL (run it under Xvfb).");
}
