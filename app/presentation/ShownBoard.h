// What the game window shows of the board, cell by cell, so that a frame redraws only what
// changed since the last one: nothing at all for a board at rest, the patch of a cell whose piece
// moved, changed, was selected or was lit (or lost its light), and every frame the cells of
// selected pieces that turn.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "engine/BoardLayout.h"
#include "rules/GameInfo.h"

namespace tolvar {

// A rectangle of window pixels, origin at the lower left; x1 and y1 are past the last pixel.
struct PixelRect {
    int x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    bool intersects(const PixelRect& o) const { return x0 < o.x1 && o.x0 < x1 && y0 < o.y1 && o.y0 < y1; }
    bool operator==(const PixelRect&) const = default;
};

// The pixels a piece of cell (x, y) may touch: its cell, the selection outline round it, and a
// model turned any way about the cell's middle.
PixelRect pieceReach(const BoardLayout& L, std::uint32_t x, std::uint32_t y);

// Everything outside the cells that a frame shows: when any of it changes, the whole frame goes.
struct FrameLook {
    std::uint8_t boardWidth = 0, boardHeight = 0;
    std::uint64_t score = 0;
    std::string gameName;
    float border[3] = {0, 0, 0};
    std::uint32_t background = 0;
    std::vector<std::uint32_t> marked;  // the keyboard cursor's and the hint's cells, board indices
    bool operator==(const FrameLook& o) const;
};

class ShownBoard {
public:
    // The screen holds something else (another picture, a fresh or uncovered window): the next
    // frame is drawn whole.
    void forget() { valid_ = false; }
    // Something else was drawn over one cell (a falling piece passing): it is drawn again.
    void forgetCell(std::uint32_t x, std::uint32_t y);

    // The cells whose picture differs from the screen's, or nothing when the whole frame must
    // be drawn. turning(piece) says whether a piece's picture changes on every frame; lit holds
    // the lit cells' board indices.
    template <typename Turning>
    std::optional<std::vector<std::uint32_t>> changedCells(const GameInfo& game, const FrameLook& frame,
                                                           const float selectColor[3],
                                                           const std::vector<std::uint32_t>& lit,
                                                           Turning turning) const {
        if (!valid_ || !(frame == frame_) || game.board.size() != cells_.size()) return std::nullopt;
        const std::vector<bool> isLit = litCells(lit, cells_.size());
        std::vector<std::uint32_t> changed;
        for (std::size_t i = 0; i < cells_.size(); ++i) {
            const BoardPiece& piece = game.board[i];
            if (!(cells_[i] == lookOf(piece, selectColor, isLit[i])) || (piece.pieceID != 0 && turning(piece)))
                changed.push_back(static_cast<std::uint32_t>(i));
        }
        return changed;
    }
    // The frame now on the screen.
    void remember(const GameInfo& game, const FrameLook& frame, const float selectColor[3],
                  const std::vector<std::uint32_t>& lit);

private:
    struct CellLook {
        bool known = false;  // false: something else was drawn there
        bool empty = true;
        float colour[3] = {0, 0, 0};
        std::uint8_t shape = 0;
        bool selected = false;
        float outline[3] = {0, 0, 0};
        bool lit = false;
        bool operator==(const CellLook& o) const;
    };
    static CellLook lookOf(const BoardPiece& piece, const float selectColor[3], bool lit);
    // Board indices to flags, one a cell; indices past the board are left out.
    static std::vector<bool> litCells(const std::vector<std::uint32_t>& lit, std::size_t cells);

    bool valid_ = false;
    FrameLook frame_;
    std::vector<CellLook> cells_;  // in the board's order: column by column
};

}  // namespace tolvar
