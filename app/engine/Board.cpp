#include "engine/Board.h"

#include <algorithm>
#include <array>
#include <limits>
#include <cstdio>

#include "engine/BoardLayout.h"

namespace tolvar {

std::vector<std::uint32_t> Flags::setNumbers() const {
    std::vector<std::uint32_t> numbers = touched_;
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

Flags Board::makeFlags() const {
    return Flags(static_cast<std::size_t>(game_.boardWidth) * game_.boardHeight + 1);
}

void Board::reportMismatch(int x, int y, const BoardPiece& piece) const {
    if (piece.x != static_cast<std::uint32_t>(x))
        out_.print("Mismatch on X.  %d != %d\n", x, static_cast<int>(piece.x));
    if (piece.y != static_cast<std::uint32_t>(y))
        out_.print("Mismatch on Y.  %d != %d\n", y, static_cast<int>(piece.y));
}

BoardPiece* Board::getPieceByID(std::uint32_t pieceID) const {
    std::vector<BoardPiece>& cells = game_.board;
    if (pieceID == 0) {
        for (BoardPiece& piece : cells)
            if (piece.pieceID == 0) return &piece;
        return nullptr;
    }
    // A number is on one cell at most: the deal numbers every cell, a refill hands out free
    // numbers and a move carries its number along. So a cell that still holds the number is the
    // one; otherwise the whole board is indexed again, once for all numbers.
    std::vector<std::uint32_t>& index = game_.cellOfPiece;
    auto cached = [&]() -> BoardPiece* {
        if (pieceID >= index.size() || index[pieceID] >= cells.size()) return nullptr;
        BoardPiece& piece = cells[index[pieceID]];
        return piece.pieceID == pieceID ? &piece : nullptr;
    };
    if (BoardPiece* piece = cached()) return piece;
    constexpr std::uint32_t kNoCell = std::numeric_limits<std::uint32_t>::max();
    std::uint32_t highest = 0;
    for (const BoardPiece& piece : cells) highest = std::max(highest, piece.pieceID);
    index.assign(static_cast<std::size_t>(highest) + 1, kNoCell);
    for (std::uint32_t n = static_cast<std::uint32_t>(cells.size()); n-- > 0;)
        index[cells[n].pieceID] = n;  // the first cell wins, should a number ever repeat
    return cached();
}

BoardPiece* Board::getBoardPieceAtWindowX(float x, float y) const {
    if (!game_.hasBoard() || game_.boardWidth == 0 || game_.boardHeight == 0) return nullptr;
    const BoardLayout layout = computeBoardLayout(game_);
    const float column = (x - layout.left) / layout.w;
    const float row = (y - layout.m) / layout.h;
    // Truncation toward zero: anything above -1 becomes column or row 0. Compared before the
    // conversion, so a point far outside (or not a number) cannot overflow it.
    if (!(column > -1.0f) || !(column < static_cast<float>(game_.boardWidth))) return nullptr;
    if (!(row > -1.0f) || !(row < static_cast<float>(game_.boardHeight))) return nullptr;
    return &getBoardPieceAtX(static_cast<int>(column), static_cast<int>(row));
}

namespace {
// The neighbours of a cell in the fixed order: left, right, below, above.
int neighbours(const GameInfo& game, const BoardPiece& piece, std::array<std::size_t, 4>& out) {
    const std::size_t h = game.boardHeight;
    const std::size_t index = static_cast<std::size_t>(piece.x) * h + piece.y;
    int n = 0;
    if (piece.x > 0) out[n++] = index - h;
    if (piece.x + 1 < game.boardWidth) out[n++] = index + h;
    if (piece.y > 0) out[n++] = index - 1;
    if (piece.y + 1 < game.boardHeight) out[n++] = index + 1;
    return n;
}
}  // namespace

// Depth-first walk over the region, visiting the neighbours in their fixed order exactly as a
// recursive walk would, but on an explicit stack so a board-sized region cannot exhaust it.
void Board::walkRegion(BoardPiece& start, Flags& flags, bool mark, std::uint8_t selectedValue,
                       std::uint32_t* count) const {
    struct Frame {
        BoardPiece* piece;
        std::array<std::size_t, 4> next;
        int count;
        int at;
    };
    // The stack: its first frames in place (most regions are small, so most walks allocate
    // nothing), any deeper ones in `deeper`.
    constexpr std::size_t kFramesInPlace = 64;
    std::array<Frame, kFramesInPlace> inPlace;
    std::size_t depthInPlace = 0;
    std::vector<Frame> deeper;
    auto enter = [&](BoardPiece& piece) {
        flags.set(piece.pieceID);
        if (mark) piece.selected = selectedValue;
        if (count) ++*count;
        Frame frame{&piece, {}, 0, 0};
        frame.count = neighbours(game_, piece, frame.next);
        if (depthInPlace < kFramesInPlace)
            inPlace[depthInPlace++] = frame;
        else
            deeper.push_back(frame);
    };
    enter(start);
    while (depthInPlace > 0) {
        Frame& top = deeper.empty() ? inPlace[depthInPlace - 1] : deeper.back();
        if (top.at == top.count) {
            if (deeper.empty())
                --depthInPlace;
            else
                deeper.pop_back();
            continue;
        }
        BoardPiece& neighbour = game_.board[top.next[top.at++]];
        if (neighbour.pieceID != 0 && !flags.test(neighbour.pieceID) &&
            neighbour.colorIndex == top.piece->colorIndex)
            enter(neighbour);  // may reallocate: top is not used after this
    }
}

std::uint32_t Board::getRegionColorCountForPiece(const BoardPiece& piece, Flags& flags) const {
    std::uint32_t count = 0;
    walkRegion(const_cast<BoardPiece&>(piece), flags, false, 0, &count);
    return count;
}

void Board::selectRegionColorPieces(BoardPiece& piece, Flags& flags) const {
    walkRegion(piece, flags, true, 1, nullptr);
}

void Board::deSelectRegionColorPieces(BoardPiece& piece, Flags& flags) const {
    walkRegion(piece, flags, true, 0, nullptr);
}

std::uint32_t Board::getRegionLinearColorCountForPiece(const BoardPiece& piece,
                                                       Flags& flags) const {
    flags.clear();
    const int x0 = static_cast<int>(piece.x);
    const int y0 = static_cast<int>(piece.y);
    const std::uint8_t color = piece.colorIndex;
    // The caller's flags were just zeroed and the walks mark only their own runs, so a run
    // goes on while the next cell holds a piece of the colour. A run is a straight stretch of
    // cells, so its ends are all that need remembering.
    auto walk = [&](int dx, int dy) {
        int steps = 0;
        int x = x0 + dx, y = y0 + dy;
        while (x >= 0 && x < game_.boardWidth && y >= 0 && y < game_.boardHeight) {
            const BoardPiece& next = getBoardPieceAtX(x, y);
            if (next.pieceID == 0 || next.colorIndex != color) break;
            ++steps;
            x += dx;
            y += dy;
        }
        return steps;
    };
    const int left = walk(-1, 0);
    const int right = walk(1, 0);
    const int down = walk(0, -1);
    const int up = walk(0, 1);
    const std::uint32_t horizontalRun = static_cast<std::uint32_t>(left + right + 1);
    const std::uint32_t verticalRun = static_cast<std::uint32_t>(down + up + 1);
    const std::size_t h = game_.boardHeight;
    if (verticalRun > game_.setupMaxLinearColors) {
        flags.set(piece.pieceID);
        for (int y = y0 - down; y <= y0 + up; ++y)
            if (y != y0) flags.set(game_.board[static_cast<std::size_t>(x0) * h + y].pieceID);
    }
    if (horizontalRun > game_.setupMaxLinearColors) {
        flags.set(piece.pieceID);
        for (int x = x0 - left; x <= x0 + right; ++x)
            if (x != x0) flags.set(game_.board[static_cast<std::size_t>(x) * h + y0].pieceID);
    }
    return std::max(horizontalRun, verticalRun);
}

std::uint32_t Board::straightRunLength(const BoardPiece& piece) const {
    const BoardPiece* cells = game_.board.data();
    const int w = game_.boardWidth, h = game_.boardHeight;
    const int x0 = static_cast<int>(piece.x), y0 = static_cast<int>(piece.y);
    const std::uint8_t color = piece.colorIndex;
    auto same = [&](int x, int y) {
        const BoardPiece& c = cells[static_cast<std::size_t>(x) * h + y];
        return c.pieceID != 0 && c.colorIndex == color;
    };
    std::uint32_t horizontal = 1, vertical = 1;
    for (int x = x0 - 1; x >= 0 && same(x, y0); --x) ++horizontal;
    for (int x = x0 + 1; x < w && same(x, y0); ++x) ++horizontal;
    for (int y = y0 - 1; y >= 0 && same(x0, y); --y) ++vertical;
    for (int y = y0 + 1; y < h && same(x0, y); ++y) ++vertical;
    return std::max(horizontal, vertical);
}

void Board::selectFlaggedPieces(const Flags& flags) const {
    for (std::uint32_t n : flags.setNumbers()) {
        BoardPiece* piece = getPieceByID(n);
        if (!piece) continue;
        piece->selected = 1;
        out_.print("count %d selected piece %d at (%d,%d)\n", static_cast<int>(n),
                    static_cast<int>(piece->pieceID), static_cast<int>(piece->x),
                    static_cast<int>(piece->y));
    }
}

BoardPiece* Board::getNthSelectedPiece(int n, std::uint32_t& numPieces) const {
    BoardPiece* found = nullptr;
    for (int x = 0; x < game_.boardWidth; ++x) {
        for (int y = 0; y < game_.boardHeight; ++y) {
            BoardPiece& piece = getBoardPieceAtX(x, y);
            if (piece.pieceID != 0 && piece.selected == 1) {
                ++numPieces;
                if (numPieces == static_cast<std::uint32_t>(n)) found = &piece;
            }
        }
    }
    return found;
}

void Board::copyPieceInfo(BoardPiece& dest, const BoardPiece& source) {
    dest.red = source.red;
    dest.green = source.green;
    dest.blue = source.blue;
    dest.colorIndex = source.colorIndex;
    dest.shapeIndex = source.shapeIndex;
}

std::uint32_t Board::getAvailablePieceID() const {
    const std::size_t limit = (static_cast<std::size_t>(game_.boardWidth) + 1) * game_.boardHeight;
    std::vector<std::uint8_t> used(limit, 0);
    for (const BoardPiece& piece : game_.board)
        if (piece.pieceID != 0 && piece.pieceID < limit) used[piece.pieceID] = 1;
    for (std::size_t n = 1; n < limit; ++n)
        if (!used[n]) return static_cast<std::uint32_t>(n);
    return 0;
}

std::uint32_t Board::countPieces() const {
    std::uint32_t count = 0;
    for (const BoardPiece& piece : game_.board)
        if (piece.pieceID != 0) ++count;
    return count;
}

}  // namespace tolvar
