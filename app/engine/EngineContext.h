// What the parts of the engine share while a game runs: the view and host, the lifecycle
// flags and the pieces of the last mouse gesture.
#pragma once

#include "engine/Host.h"
#include "engine/View.h"
#include "rules/GameInfo.h"

namespace tolvar {

struct EngineContext {
    EngineContext(View& v, Host& h) : view(v), host(h) {}

    View& view;
    Host& host;
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
