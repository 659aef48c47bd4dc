// The preview of a move: over random positions of the built-in games, the figures it gives are
// those of the move then made, and it leaves the game and the desktop as they were.
#include <cstdio>
#include <memory>
#include <random>

#include "EngineFakes.h"
#include "engine/BoardLayout.h"
#include "engine/Completion.h"
#include "engine/Engine.h"
#include "rules/BuiltinGames.h"

namespace tolvar {
namespace {

using namespace testing;

struct Played {
    Value rules;
    bool swaps;   // a drag swaps neighbours; otherwise a click selects a region and space removes it
    bool refills; // removed pieces are replaced, so the pieces left do not count a removal
};

std::vector<BoardCell> selectedCells(const GameInfo& game) {
    std::vector<BoardCell> cells;
    for (std::size_t n = 0; n < game.board.size(); ++n)
        if (game.board[n].pieceID != 0 && game.board[n].selected != 0)
            cells.push_back({static_cast<std::uint32_t>(n / game.boardHeight),
                             static_cast<std::uint32_t>(n % game.boardHeight)});
    return cells;
}

long pieceCount(const GameInfo& game) {
    return std::count_if(game.board.begin(), game.board.end(), [](const BoardPiece& p) { return p.pieceID != 0; });
}

TEST(MovePreviewTest, APreviewGivesTheScoreOfTheMoveThenMadeAndChangesNothing) {
    const Played games[] = {
        {createTestGameOne(), false, false},
        {createTestGameTwo(), true, false},
        {createTestGameThree(), true, true},
    };
    constexpr int kSeeds = 30;
    constexpr int kMaxMoves = 150;
    for (const Played& played : games) {
        int moves = 0, removals = 0;
        for (int seed = 1; seed <= kSeeds; ++seed) {
            SCOPED_TRACE(played.rules.asDictionary()->find("GameName")->asString()->c_str() +
                         (" seed " + std::to_string(seed)));
            const std::unique_ptr<std::FILE, int (*)(std::FILE*)> printed(std::tmpfile(), &std::fclose);
            ASSERT_TRUE(printed);
            StandInHost host;
            StandInView view(host);
            Engine engine(view, host, GameOutput(printed.get()));
            ActionsMenu menu;
            engine.seedBoardPicks(static_cast<std::uint32_t>(seed));
            engine.startGame(&played.rules, menu);
            const GameInfo& game = *engine.game();
            const BoardLayout layout = computeBoardLayout(game);
            const auto x = [&](std::uint32_t column) { return layout.left + (static_cast<float>(column) + 0.5f) * layout.w; };
            const auto y = [&](std::uint32_t row) { return layout.m + (static_cast<float>(row) + 0.5f) * layout.h; };
            EXPECT_FALSE(engine.previewClick(x(0), y(0)));  // its start has not run yet
            engine.processEvents();

            std::mt19937 chooser(static_cast<std::uint32_t>(seed));
            for (int m = 0; m < kMaxMoves && engine.gamePaused() == 0; ++m) {
                const BoardCell from{static_cast<std::uint32_t>(chooser() % game.boardWidth),
                                     static_cast<std::uint32_t>(chooser() % game.boardHeight)};
                BoardCell to = from;
                if (played.swaps) (chooser() % 2 ? to.column : to.row) += 1;  // off the board at times

                const GameSnapshot before = engine.snapshot();
                const long printedBefore = std::ftell(printed.get());
                const int draws = view.draws;
                const std::size_t alerts = host.alerts.size();
                const std::optional<MovePreview> preview =
                    played.swaps ? engine.previewDrag(x(from.column), y(from.row), x(to.column), y(to.row))
                                 : engine.previewClick(x(from.column), y(from.row));
                ASSERT_EQ(engine.snapshot(), before) << "move " << m;
                ASSERT_EQ(std::ftell(printed.get()), printedBefore);
                ASSERT_EQ(std::pair(view.draws, host.alerts.size()), std::pair(draws, alerts));

                const long piecesBefore = pieceCount(game);
                const auto mouse = [&](std::int64_t type, BoardCell at) {
                    CurrentEvent e;
                    e.type = type, e.x = x(at.column), e.y = y(at.row);
                    engine.takeInput(e);
                };
                mouse(kEventTypeMouseDown, from);
                mouse(kEventTypeMouseUp, to);
                if (!played.swaps && preview) {
                    EXPECT_EQ(selectedCells(game), preview->cells) << "move " << m;
                }
                engine.processEvents();
                if (!played.swaps) {
                    CurrentEvent space;
                    space.type = kEventTypeKeyDown, space.keyCode = 132, space.characters = " ";
                    engine.takeInput(space);
                    space.type = kEventTypeKeyUp;
                    engine.takeInput(space);
                    engine.processEvents();
                }
                if (!preview) {
                    ASSERT_TRUE(before.sameGameAs(engine.snapshot())) << "move " << m << " was previewed as none";
                    continue;
                }
                ++moves;
                removals += preview->pieces != 0;
                ASSERT_EQ(game.score, preview->score) << "move " << m;
                if (!played.refills) {
                    EXPECT_EQ(piecesBefore - pieceCount(game), static_cast<long>(preview->pieces));
                }
            }
            if (engine.gamePaused() != 0) {
                EXPECT_FALSE(engine.previewClick(x(0), y(0)));  // the game is over
            }
        }
        // The positions were many and varied: moves that removed pieces, and ones that did not.
        EXPECT_GT(moves, 100);
        EXPECT_GT(removals, 50);
    }
}

// Over positions of "Trindle" played at random: the hint is a swap that makes a group whenever a
// swap of two pieces does (the game's own move, played on a copy, says whether it does), and it
// says so; when none does, it is a swap that only moves the pieces on, and says that.
TEST(MovePreviewTest, AHintInASwapGameMakesAGroupWhenASwapCan) {
    const Value rules = createTestGameTwo();
    constexpr int kSeeds = 12;
    constexpr int kMaxMoves = 120;
    int grouping = 0, movingOn = 0;
    for (int seed = 1; seed <= kSeeds; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        StandInHost host;
        StandInView view(host);
        Engine engine(view, host, GameOutput::discarded());
        ActionsMenu menu;
        engine.seedBoardPicks(static_cast<std::uint32_t>(seed));
        engine.startGame(&rules, menu);
        engine.processEvents();
        const GameInfo& game = *engine.game();
        const BoardLayout layout = computeBoardLayout(game);
        const auto x = [&](BoardCell c) { return layout.left + (static_cast<float>(c.column) + 0.5f) * layout.w; };
        const auto y = [&](BoardCell c) { return layout.m + (static_cast<float>(c.row) + 0.5f) * layout.h; };
        const auto holds = [&](BoardCell c) {
            return c.column < game.boardWidth && c.row < game.boardHeight &&
                   game.board[c.column * game.boardHeight + c.row].pieceID != 0;
        };
        const auto groups = [&](BoardCell a, BoardCell b) {
            const std::optional<MovePreview> p = engine.previewDrag(x(a), y(a), x(b), y(b));
            return p && p->pieces > 0;
        };
        std::mt19937 chooser(static_cast<std::uint32_t>(seed));
        for (int m = 0; m < kMaxMoves && engine.gamePaused() == 0; ++m) {
            bool anyGroups = false;
            for (std::uint32_t c = 0; c < game.boardWidth && !anyGroups; ++c)
                for (std::uint32_t r = 0; r < game.boardHeight && !anyGroups; ++r)
                    for (const BoardCell to : {BoardCell{c + 1, r}, BoardCell{c, r + 1}})
                        anyGroups = anyGroups || (holds({c, r}) && holds(to) && groups({c, r}, to));
            const Hint hint = engine.hint();
            ASSERT_EQ(hint.cells.size(), 2u) << "move " << m;
            EXPECT_EQ(hint.makesGroup, anyGroups) << "move " << m;
            EXPECT_EQ(groups(hint.cells[0], hint.cells[1]), anyGroups) << "move " << m;
            ++(anyGroups ? grouping : movingOn);

            // On with a swap of two pieces, one that groups or not.
            const BoardCell from{static_cast<std::uint32_t>(chooser() % game.boardWidth),
                                 static_cast<std::uint32_t>(chooser() % game.boardHeight)};
            BoardCell to = from;
            (chooser() % 2 ? to.column : to.row) += 1;
            if (!holds(from) || !holds(to)) continue;
            for (const auto& [type, at] : {std::pair{kEventTypeMouseDown, from}, {kEventTypeMouseUp, to}}) {
                CurrentEvent e;
                e.type = type, e.x = x(at), e.y = y(at);
                engine.takeInput(e);
            }
            engine.processEvents();
        }
    }
    // Both kinds of position were met.
    EXPECT_GT(grouping, 100);
    EXPECT_GT(movingOn, 10);
}

}  // namespace
}  // namespace tolvar
