// Looking at the board: cells by position, by piece number and under a window point, colour
// regions and straight runs, and marking pieces as selected.
//
// A Board is a light view over the running game's records; it owns nothing.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/Flags.h"
#include "rules/GameInfo.h"
#include "rules/GameOutput.h"

namespace tolvar {

// A cell of the board by column and row (row 0 at the bottom).
struct BoardCell {
    std::uint32_t column = 0;
    std::uint32_t row = 0;
    bool operator==(const BoardCell&) const = default;
};

class Board {
public:
    // Its diagnostic lines go to out.
    Board(GameInfo& game, const GameOutput& out) : game_(game), out_(out) {}

    // A flags array covering every piece number of this board.
    Flags makeFlags() const;

    // The cell at column x, row y (0 <= x < boardWidth, 0 <= y < boardHeight). Reports a record
    // whose position disagrees with its cell.
    BoardPiece& getBoardPieceAtX(int x, int y) const {
        BoardPiece& piece = game_.board[static_cast<std::size_t>(x) * game_.boardHeight + y];
        if (piece.x != static_cast<std::uint32_t>(x) || piece.y != static_cast<std::uint32_t>(y)) [[unlikely]]
            reportMismatch(x, y, piece);
        return piece;
    }
    // The first cell holding that piece number (0 finds the first empty cell), or nullptr.
    BoardPiece* getPieceByID(std::uint32_t pieceID) const;
    // The cell under a window point (origin lower left), or nullptr outside the board.
    BoardPiece* getBoardPieceAtWindowX(float x, float y) const;

    // Size of the colour region joined to piece through unflagged pieces; flags its pieces.
    std::uint32_t getRegionColorCountForPiece(const BoardPiece& piece, Flags& flags) const;
    // Longer of the horizontal and vertical runs of piece's colour through it. Zeroes flags,
    // then flags the pieces of each run longer than setupMaxLinearColors.
    std::uint32_t getRegionLinearColorCountForPiece(const BoardPiece& piece, Flags& flags) const;
    // The same length, read straight from the board without touching any flags: for tests
    // that only need the number.
    std::uint32_t straightRunLength(const BoardPiece& piece) const;
    void selectRegionColorPieces(BoardPiece& piece, Flags& flags) const;
    void deSelectRegionColorPieces(BoardPiece& piece, Flags& flags) const;
    void selectFlaggedPieces(const Flags& flags) const;
    // Counts the selected pieces into numPieces and returns the n-th of them, or nullptr.
    BoardPiece* getNthSelectedPiece(int n, std::uint32_t& numPieces) const;
    static void copyPieceInfo(BoardPiece& dest, const BoardPiece& source);
    // The smallest piece number no cell holds, or 0.
    std::uint32_t getAvailablePieceID() const;

    // Number of non-empty cells.
    std::uint32_t countPieces() const;

    int width() const { return game_.boardWidth; }
    int height() const { return game_.boardHeight; }
    GameInfo& game() const { return game_; }

private:
    // "Mismatch on X." / "on Y." for a record whose position disagrees with its cell.
    void reportMismatch(int x, int y, const BoardPiece& piece) const;
    void walkRegion(BoardPiece& start, Flags& flags, bool mark, std::uint8_t selectedValue,
                    std::uint32_t* count) const;

    GameInfo& game_;
    GameOutput out_;
};

}  // namespace tolvar
