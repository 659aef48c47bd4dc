#include "engine/BoardSetup.h"

#include <array>
#include <cstdio>
#include <cstdlib>

#include "engine/Board.h"
#include "engine/RandomSequence.h"

namespace tolvar {

namespace {
struct Rgb {
    float red, green, blue;
};
constexpr std::array<Rgb, kDrawnColorCount> kColorTable{{
    {1.0f, 0.0f, 0.0f},
    {0.0f, 0.75f, 0.0f},
    {0.0f, 0.0f, 0.75f},
    {0.5f, 0.0f, 0.5f},
    {0.0f, 0.5f, 1.0f},
    {1.0f, 1.0f, 0.0f},
    {0.5f, 0.25f, 0.125f},
    {0.65f, 0.65f, 0.65f},
    {1.0f, 1.0f, 1.0f},
    {0.0f, 0.0f, 0.0f},
}};

// A draw from the game's random sequence, reduced to 1..count.
unsigned drawNumber(RandomSequence& random, unsigned count) {
    return static_cast<unsigned>(static_cast<long>(random.next()) % static_cast<long>(count == 0 ? 1 : count)) + 1;
}

// Whether some colour other than the piece's own would bring its runs within the limit.
bool someColorFits(const Board& board, BoardPiece& piece, Flags& flags) {
    const GameInfo& game = board.game();
    const std::uint8_t own = piece.colorIndex;
    bool fits = false;
    for (unsigned c = 1; c <= game.numColors && !fits; ++c) {
        if (c == own) continue;
        piece.colorIndex = static_cast<std::uint8_t>(c);
        fits = board.getRegionLinearColorCountForPiece(piece, flags) <= game.setupMaxLinearColors;
        flags.clear();
    }
    piece.colorIndex = own;
    return fits;
}
}  // namespace

void setPieceColor(const GameInfo& game, BoardPiece& piece) {
    if (piece.colorIndex >= 1 && piece.colorIndex <= kColorTable.size()) {
        const Rgb& rgb = kColorTable[piece.colorIndex - 1];
        piece.red = rgb.red;
        piece.green = rgb.green;
        piece.blue = rgb.blue;
    }
    if (game.colorsMatchShapes) piece.shapeIndex = piece.colorIndex;
}

void setupGame(GameInfo& game, View& view, RandomSequence& random, const GameOutput& out) {
    view.clearPieceSprites(0);
    const std::size_t cells = static_cast<std::size_t>(game.boardWidth) * game.boardHeight;
    std::vector<BoardPiece> board(cells);
    std::size_t n = 0;
    for (std::uint32_t x = 0; x < game.boardWidth; ++x) {
        for (std::uint32_t y = 0; y < game.boardHeight; ++y, ++n) {
            BoardPiece& piece = board[n];
            piece.x = x;
            piece.y = y;
            if (!game.setupRandomFill) continue;  // an empty cell
            piece.colorIndex = static_cast<std::uint8_t>(drawNumber(random, game.numColors));
            piece.shapeIndex = static_cast<std::uint8_t>(drawNumber(random, game.numShapes));
            setPieceColor(game, piece);
            piece.pieceID = static_cast<std::uint32_t>(n + 1);
            if (game.holesAllowed && static_cast<long>(random.next()) % static_cast<long>(game.numColors ? game.numColors : 1) == 0)
                piece.pieceID = 0;
        }
    }
    game.board = std::move(board);

    if (game.setupMaxLinearColors == 0 || cells == 0) return;
    Board view_(game, out);
    Flags flags = view_.makeFlags();
    for (int x = 0; x < game.boardWidth; ++x) {
        for (int y = 0; y < game.boardHeight; ++y) {
            BoardPiece& piece = view_.getBoardPieceAtX(x, y);
            std::uint32_t count = view_.getRegionLinearColorCountForPiece(piece, flags);
            flags.clear();
            out.print("Color count for piece %d at %d,%d is %d\n", static_cast<int>(piece.pieceID),
                        x, y, static_cast<int>(count));
            while (count > game.setupMaxLinearColors) {
                if (!game.setupRandomFill || !someColorFits(view_, piece, flags)) {
                    std::fprintf(stderr,
                                 "Board set-up: no colour keeps the runs through piece %d at %d,%d "
                                 "within %d; it keeps colour %d\n",
                                 static_cast<int>(piece.pieceID), x, y,
                                 static_cast<int>(game.setupMaxLinearColors),
                                 static_cast<int>(piece.colorIndex));
                    break;
                }
                unsigned color;
                do {
                    color = drawNumber(random, game.numColors);
                } while (color == piece.colorIndex);
                piece.colorIndex = static_cast<std::uint8_t>(color);
                setPieceColor(game, piece);
                out.print("Changing piece %d at %d,%d color to %d\n",
                            static_cast<int>(piece.pieceID), x, y, static_cast<int>(color));
                count = view_.getRegionLinearColorCountForPiece(piece, flags);
                flags.clear();
                out.print("Color count for piece %d at %d,%d is %d\n",
                            static_cast<int>(piece.pieceID), x, y, static_cast<int>(count));
            }
        }
    }
}

void printBoardColors(const GameInfo& game, const GameOutput& out) {
    if (game.board.size() < static_cast<std::size_t>(game.boardWidth) * game.boardHeight) return;
    Board board(const_cast<GameInfo&>(game), out);
    for (int x = 0; x < game.boardWidth; ++x) {
        for (int y = 0; y < game.boardHeight; ++y)
            out.print("%d", static_cast<int>(board.getBoardPieceAtX(x, y).colorIndex));
        out.print("\n");
    }
    out.print("\n");
}

}  // namespace tolvar
