// What a move would bring before it is made: the move and every event it causes are played on a
// copy of the game (its snapshot, random sequence included) that draws nothing, shows nothing
// and prints nothing, so the figures are exactly those of the move made, for any rules.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "engine/Board.h"
#include "engine/EngineContext.h"

namespace tolvar {

struct MovePreview {
    // The pieces the move's first removal takes (a clicked region, the group a swap makes), or,
    // when it removes none, the pieces left selected.
    std::vector<BoardCell> cells;
    std::uint64_t pieces = 0;  // every piece the move and its events remove
    std::uint64_t score = 0;   // the score once they have all run
};

// A gesture in window points (origin lower left): a press at (x1, y1) and a release at
// (x2, y2), then, when key is not 0, that key pressed; a tick of the event timer follows the
// release and the key, as the window's timer runs between the player's inputs.
struct PreviewGesture {
    float x1 = 0, y1 = 0, x2 = 0, y2 = 0;
    std::int8_t key = 0;
};

// The gesture played on a copy of the game in ctx (which must have one); nothing when the game
// would be just as it was (no move there). The game in ctx is not touched.
std::optional<MovePreview> previewMove(const EngineContext& ctx, const PreviewGesture& gesture);

}  // namespace tolvar
