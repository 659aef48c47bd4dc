#include "presentation/ShownBoard.h"

#include <algorithm>
#include <cmath>

namespace tolvar {

PixelRect pieceReach(const BoardLayout& L, std::uint32_t x, std::uint32_t y) {
    const float X = static_cast<float>(x) * L.w + L.left;
    const float Y = static_cast<float>(y) * L.h + L.m;
    // The outline is a 2-pixel line one pixel outside the piece. A model is centred W/2 above
    // and right of the corner and, turned any way, stays within W of its middle.
    const float cx = X + L.pw / 2, cy = Y + L.pw / 2, reach = L.pw;
    return {static_cast<int>(std::floor(std::min(X - 3, cx - reach))),
            static_cast<int>(std::floor(std::min(Y - 3, cy - reach))),
            static_cast<int>(std::ceil(std::max(X + L.pw + 3, cx + reach))),
            static_cast<int>(std::ceil(std::max(Y + L.ph + 3, cy + reach)))};
}

bool FrameLook::operator==(const FrameLook& o) const {
    return boardWidth == o.boardWidth && boardHeight == o.boardHeight && score == o.score &&
           gameName == o.gameName && std::equal(border, border + 3, o.border) && background == o.background &&
           marked == o.marked;
}

bool ShownBoard::CellLook::operator==(const CellLook& o) const {
    if (!known || !o.known || lit != o.lit) return false;
    if (empty || o.empty) return empty == o.empty;
    return std::equal(colour, colour + 3, o.colour) && shape == o.shape && selected == o.selected &&
           std::equal(outline, outline + 3, o.outline);
}

ShownBoard::CellLook ShownBoard::lookOf(const BoardPiece& piece, const float selectColor[3], bool lit) {
    CellLook look;
    look.known = true;
    look.lit = lit;
    look.empty = piece.pieceID == 0;
    if (look.empty) return look;
    look.colour[0] = piece.red, look.colour[1] = piece.green, look.colour[2] = piece.blue;
    look.shape = piece.shapeIndex;
    look.selected = piece.selected != 0;
    if (look.selected) std::copy(selectColor, selectColor + 3, look.outline);
    return look;
}

void ShownBoard::forgetCell(std::uint32_t x, std::uint32_t y) {
    const std::size_t index = static_cast<std::size_t>(x) * frame_.boardHeight + y;
    if (y < frame_.boardHeight && index < cells_.size()) cells_[index].known = false;
}

std::vector<bool> ShownBoard::litCells(const std::vector<std::uint32_t>& lit, std::size_t cells) {
    std::vector<bool> flags(cells, false);
    for (const std::uint32_t index : lit)
        if (index < cells) flags[index] = true;
    return flags;
}

void ShownBoard::remember(const GameInfo& game, const FrameLook& frame, const float selectColor[3],
                          const std::vector<std::uint32_t>& lit) {
    valid_ = true;
    frame_ = frame;
    cells_.resize(game.board.size());
    const std::vector<bool> isLit = litCells(lit, cells_.size());
    for (std::size_t i = 0; i < cells_.size(); ++i) cells_[i] = lookOf(game.board[i], selectColor, isLit[i]);
}

}  // namespace tolvar
