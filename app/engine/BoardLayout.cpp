#include "engine/BoardLayout.h"

namespace tolvar {

BoardLayout computeBoardLayout(const GameInfo& game) {
    BoardLayout layout;
    layout.m = game.hasLauncher ? 50.0f : 10.0f;
    const float side = winHeight - 2.0f * layout.m;
    layout.h = side / static_cast<float>(game.boardHeight);
    layout.w = side / static_cast<float>(game.boardWidth);
    layout.ph = layout.h - 3.0f;
    if (game.squareShapes) {
        layout.w = layout.h;
        layout.pw = layout.ph;
        // The board is centred: the subtraction in single precision, the halving in double.
        const float span = winWidth - layout.w * static_cast<float>(game.boardWidth);
        layout.left = static_cast<float>(static_cast<double>(span) / 2.0);
    } else {
        layout.pw = layout.w - 3.0f;
        layout.left = layout.m + (winWidth - winHeight) / 2.0f;
    }
    return layout;
}

}  // namespace tolvar
