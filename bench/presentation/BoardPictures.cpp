// Draws each built-in game's board, a board with a selected region, and the score screen into
// a game-sized window and writes them as PNG pictures:
//
//     presentation-pictures FOLDER
//
// Run under a display (xvfb-run). Pictures: board-vexamor.png, board-trindle.png,
// board-glimmet.png, board-selection.png, board-figures.png, scores.png.
#include <cctype>
#include <cstdio>
#include <memory>
#include <string>

#include "BuiltinBoards.h"
#include "GlTestWindow.h"
#include "core/CommandLine.h"

using namespace tolvar;

namespace {

constexpr const char* kUsage = "usage: presentation-pictures FOLDER\n";
constexpr const char* kHelp =
    "usage: presentation-pictures FOLDER\n"
    "Draws each built-in game's board, a board with a selected region, the ten figures and the\n"
    "score screen as the game window shows them, and writes them into FOLDER as PNG pictures\n"
    "(board-vexamor.png, board-trindle.png, board-glimmet.png, board-selection.png,\n"
    "board-figures.png, scores.png). Needs a display: run it under Xvfb.\n"
    "\n"
    "  --help     show this help and exit\n"
    "  --version  show the version and exit\n";

std::string lower(std::string s) {
    for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

bool save(const std::string& folder, const std::string& file) {
    const std::string path = folder + "/" + file;
    if (!test::saveWindowPicture(path)) {
        std::fprintf(stderr, "%s: cannot write the picture\n", path.c_str());
        return false;
    }
    std::printf("wrote %s\n", path.c_str());
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (answerHelpOrVersion(argc, argv, "presentation-pictures", kHelp)) return 0;
    if (argc != 2) {
        std::fprintf(stderr, "%s", kUsage);
        return 2;
    }
    const std::string folder = argv[1];
    std::string why;
    if (!test::openTestWindow(why)) {
        std::fprintf(stderr, "no OpenGL window: %s\n", why.c_str());
        return 1;
    }
    StandInHost host;
    test::CountingWindow window;
    std::unique_ptr<GameInfo> gameInfo;
    RandomSequence random;
    GameView::Window callbacks = window.callbacks();
    callbacks.game = [&] { return gameInfo.get(); };
    callbacks.random = [&] { return random.next(); };
    GameView view(host, std::move(callbacks));
    view.loadBGTexture();

    bool ok = true;
    for (const char* name : {"Vexamor", "Trindle", "Glimmet"}) {
        gameInfo = bench::startBuiltinGame(name, view, random);
        if (!gameInfo) {
            std::fprintf(stderr, "cannot start %s\n", name);
            ok = false;
            continue;
        }
        gameInfo->score = 12;
        view.drawBoard(*gameInfo);
        ok = save(folder, "board-" + lower(name) + ".png") && ok;
    }

    // The ten figures, one per column, a colour per row, with the bottom row selected.
    {
        static const float palette[5][3] = {
            {1.0f, 0.8f, 0.1f}, {0.2f, 0.6f, 1.0f}, {1.0f, 0.2f, 0.2f}, {0.2f, 0.9f, 0.3f}, {0.9f, 0.3f, 1.0f}};
        auto game = std::make_unique<GameInfo>();
        game->boardWidth = 10;
        game->boardHeight = 10;
        game->squareShapes = 1;
        game->gameName = "Figures";
        game->board.resize(100);
        for (std::uint32_t x = 0; x < 10; ++x)
            for (std::uint32_t y = 0; y < 10; ++y) {
                BoardPiece& p = game->board[x * 10 + y];
                p.x = x;
                p.y = y;
                p.pieceID = x * 10 + y + 1;
                p.shapeIndex = static_cast<std::uint8_t>(x + 1);
                p.red = palette[y % 5][0];
                p.green = palette[y % 5][1];
                p.blue = palette[y % 5][2];
                p.selected = y == 0 ? 1 : 0;
            }
        gameInfo = std::move(game);
        view.clearPieceSprites(0);
        view.drawBoard(*gameInfo);
        ok = save(folder, "board-figures.png") && ok;
    }

    // Vexamor with the pieces of the lower left colour region selected, the mouse near them.
    if ((gameInfo = bench::startBuiltinGame("Vexamor", view, random))) {
        const GameInfo& g = *gameInfo;
        const BoardPiece& first = g.board[0];
        for (BoardPiece& p : gameInfo->board)
            if (p.colorIndex == first.colorIndex && p.x < 3 && p.y < 3) p.selected = 1;
        window.mouseX = 200;
        window.mouseY = 150;
        for (int i = 0; i < 20; ++i) view.drawBoard(*gameInfo);
        ok = save(folder, "board-selection.png") && ok;

        // The score screen after a game: five best scores, the second one new.
        Array entries;
        for (int i = 0; i < 5; ++i) {
            Dictionary entry;
            entry.set("Score", Value::integer(8 + 5 * i));
            entry.set("Date", Value::date(Date::fromUnixTime(1767225600.0 + 86400.0 * 3 * i + 3600.0 * i)));
            entries.push_back(Value::dictionary(std::move(entry)));
        }
        const Value scores = Value::array(std::move(entries));
        gameInfo->score = 13;
        view.displayScores(scores, 1);
        for (int i = 0; i < 25; ++i) view.scoresTimerFired(scores);
        ok = save(folder, "scores.png") && ok;
    }
    return ok ? 0 : 1;
}
