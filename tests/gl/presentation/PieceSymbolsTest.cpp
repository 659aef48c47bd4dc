// Symbols on the pieces, drawn in a real window: with them, every two of the ten colours differ
// where colour is taken out, on flat figures and on the model alike; without them the board is
// drawn as before.
#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "GlTestWindow.h"
#include "GlWindow.h"
#include "engine/BoardLayout.h"
#include "engine/BoardSetup.h"

namespace tolvar::test {
namespace {

constexpr int kColours = static_cast<int>(kDrawnColorCount);
constexpr int kGreyApart = 60;          // two grey levels a player tells apart
constexpr double kLeastApartShare = 0.03;  // of a cell's pixels, for two pieces to be told apart

// The whole window's pixels as grey levels (luma), bottom row first.
std::vector<int> greyWindow() {
    std::vector<unsigned char> rgba(static_cast<std::size_t>(kGlWindowWidth) * kGlWindowHeight * 4);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, kGlWindowWidth, kGlWindowHeight, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
    std::vector<int> grey(rgba.size() / 4);
    for (std::size_t i = 0; i < grey.size(); ++i)
        grey[i] = (299 * rgba[4 * i] + 587 * rgba[4 * i + 1] + 114 * rgba[4 * i + 2]) / 1000;
    return grey;
}

class PieceSymbolsTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string why;
        ASSERT_TRUE(openTestWindow(why)) << why;
    }
    // A 10 x 10 board whose column x is of colour x + 1, as the game colours it, in pieces of one shape.
    void makeBoard(std::uint8_t shape) {
        game.boardWidth = game.boardHeight = kColours, game.squareShapes = true;
        game.board.assign(kColours * kColours, BoardPiece{});
        for (int x = 0; x < kColours; ++x)
            for (int y = 0; y < kColours; ++y) {
                BoardPiece& p = game.board[static_cast<std::size_t>(x * kColours + y)];
                p.colorIndex = static_cast<std::uint8_t>(x + 1), p.shapeIndex = shape;
                p.x = static_cast<std::uint32_t>(x), p.y = static_cast<std::uint32_t>(y), p.pieceID = p.x * kColours + p.y + 1;
                setPieceColor(game, p);
            }
    }
    std::vector<int> drawn() {
        view.setNeedsDisplay();
        view.drawBoard(game);
        return greyWindow();
    }
    // The pixels of the middles of cells (a, 0) and (b, 0), where a symbol goes, that a player
    // tells apart in grey (the same place in each; the figures' edges, a pixel off between
    // cells, are left out).
    double apartShare(const std::vector<int>& grey, int a, int b) const {
        const BoardLayout L = computeBoardLayout(game);
        const int w = static_cast<int>(L.pw * 0.6f), h = static_cast<int>(L.ph * 0.6f);
        const int y0 = static_cast<int>(L.m + L.ph * 0.2f), x0 = static_cast<int>(L.pw * 0.2f);
        int apart = 0;
        for (int y = y0; y < y0 + h; ++y)
            for (int dx = x0; dx < x0 + w; ++dx) {
                const int xa = static_cast<int>(a * L.w + L.left) + dx, xb = static_cast<int>(b * L.w + L.left) + dx;
                apart += std::abs(grey[static_cast<std::size_t>(y * kGlWindowWidth + xa)] -
                                  grey[static_cast<std::size_t>(y * kGlWindowWidth + xb)]) > kGreyApart;
            }
        return static_cast<double>(apart) / (w * h);
    }

    GameInfo game;
    StandInHost host;
    CountingWindow window;
    GameView view{host, window.callbacks()};
};

TEST_F(PieceSymbolsTest, EveryTwoColoursDifferInGreyWithSymbolsOnFiguresAndModels) {
    // A filled hexagon and an outlined square (flat figures), and the spiky model.
    for (const std::uint8_t shape : {5, 3, 1}) {
        SCOPED_TRACE(testing::Message() << "shape " << int(shape));
        makeBoard(shape);
        ASSERT_FALSE(view.symbolsShown()) << "off at first";
        const std::vector<int> plain = drawn();
        // Without symbols some colours read alike in grey (the test would pass without them otherwise).
        int alike = 0;
        for (int a = 0; a < kColours; ++a)
            for (int b = a + 1; b < kColours; ++b) alike += apartShare(plain, a, b) < kLeastApartShare;
        EXPECT_GT(alike, 0);

        view.showSymbols(true);
        const std::vector<int> marked = drawn();
        for (int a = 0; a < kColours; ++a)
            for (int b = a + 1; b < kColours; ++b)
                EXPECT_GE(apartShare(marked, a, b), kLeastApartShare) << "colours " << a + 1 << " and " << b + 1;

        view.showSymbols(false);
        EXPECT_TRUE(drawn() == plain) << "symbols off draw the board as before";
    }
}

TEST_F(PieceSymbolsTest, APieceRedrawnAloneShowsItsSymbolAsTheBoardDoes) {
    makeBoard(1);
    view.showSymbols(true);
    const std::vector<int> board = drawn();
    const BoardPiece piece = game.board[3 * kColours];
    view.drawIndividualPiece(game, &piece);
    const std::vector<int> alone = greyWindow();
    const BoardLayout L = computeBoardLayout(game);
    const int cx = static_cast<int>(3 * L.w + L.left + L.pw / 2), cy = static_cast<int>(L.m + L.ph / 2);
    const std::size_t centre = static_cast<std::size_t>(cy * kGlWindowWidth + cx);
    EXPECT_LT(alone[centre], 40) << "the symbol's black middle";
    EXPECT_EQ(alone[centre], board[centre]);
    view.showSymbols(false);
}

}  // namespace
}  // namespace tolvar::test
