// What the parts of the engine share while a game runs: the view and host, the running game, its
// random sequence and diagnostic output, the lifecycle flags and the pieces of the last mouse
// gesture. Everything about a game lives here, so games in separate engines never meet.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/Board.h"
#include "engine/Host.h"
#include "engine/RandomSequence.h"
#include "engine/View.h"
#include "rules/GameInfo.h"
#include "rules/GameOptions.h"
#include "rules/GameOutput.h"
#include "rules/SoundNames.h"

namespace tolvar {

// What the removals of a move emptied, kept while the move is tried on a copy of the game.
struct RemovalTally {
    std::uint64_t pieces = 0;             // emptied by all of them
    std::vector<BoardCell> firstRemoval;  // the cells the first one emptied
};

struct EngineContext {
    EngineContext(View& v, Host& h, GameOutput o = GameOutput()) : view(v), host(h), out(o) {}

    View& view;
    Host& host;
    GameOutput out;  // where the diagnostic lines go
    // The running game; empty before the first start.
    std::unique_ptr<GameInfo> gameInfo;
    // Every draw of the board, the refills and the removal flash, and the score screen's; it
    // starts again from the board's number at each deal.
    RandomSequence random;
    // The number of the board being played (see BoardNumbers.h); 0 for none, or for a board
    // saved before boards had numbers.
    std::uint32_t boardNumber = 0;
    // Where the numbers of boards dealt without one come from.
    RandomSequence boardPicks;
    // 1 from a start until the first tick has queued the game-start event.
    int gameStarted = 0;
    // 1 while no game may be played or drawn: at launch and after the best-score check.
    int gamePaused = 1;
    // The cells under the last mouse-down and mouse-up; they point into the running board and
    // are forgotten whenever that board is released.
    BoardPiece* downPiece = nullptr;
    BoardPiece* upPiece = nullptr;
    // Raised for every board dealt (a start, Escape, a new game), so what belongs to one board
    // knows when it has gone.
    unsigned boardsDealt = 0;
    // The player's choices the running game was started with (only those that differ from its
    // rules); its best scores go to the table they name.
    GameOptions options;
    // Kept only on a copy that tries a move: the played game counts nothing.
    std::optional<RemovalTally> tally;
    // The sound of the action running, when its rules name one: it stands in for the sounds the
    // action makes by itself.
    const std::string* actionSound = nullptr;

    // The game makes the sound named name (rules/SoundNames.h), unless the running action names its own.
    void sound(std::string_view name) const {
        if (!actionSound) view.playSound(std::string(name));
    }

    bool hasGame() const { return gameInfo != nullptr; }
    GameInfo& game() const { return *gameInfo; }

    void forgetGesture() {
        downPiece = nullptr;
        upPiece = nullptr;
    }
    // Releases the running board (the records stay).
    void releaseBoard() {
        forgetGesture();
        if (gameInfo) {
            gameInfo->board.clear();
            gameInfo->board.shrink_to_fit();
        }
    }
};

}  // namespace tolvar
