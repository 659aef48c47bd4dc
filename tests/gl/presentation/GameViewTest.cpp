// The board as the player sees it, probed in a real window: frame, pieces of every figure,
// selection outline, score and name, background, single-cell redraws and falling pieces.
#include <GL/gl.h>
#include <SDL_image.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <utility>

#include "FileIO.h"
#include "GlTestWindow.h"
#include "engine/BoardLayout.h"
#include "engine/SelectColor.h"
#include "presentation/DrawingGlobals.h"

namespace tolvar::test {
namespace {

bool isBlack(const Rgb& p) { return p.r < 8 && p.g < 8 && p.b < 8; }
bool isFrame(const Rgb& p) { return near(p, 127, 63, 0, 3); }
bool isText(const Rgb& p) { return near(p, 127, 0, 127, 3); }
bool isRed(const Rgb& p) { return p.r > 40 && p.r > 2 * p.g && p.r > 2 * p.b; }
// A lit piece: its own colour channels stand out, the others stay dark.
bool looksLike(const Rgb& p, const BoardPiece& c) {
    auto ok = [](int v, float want) { return want > 0.5f ? v > 90 : v < 40; };
    return ok(p.r, c.red) && ok(p.g, c.green) && ok(p.b, c.blue);
}

class GameViewTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string why;
        ASSERT_TRUE(openTestWindow(why)) << "no OpenGL window: " << why;
        gSelectColor = kDefaultSelectColor;
    }
    void TearDown() override { gameInfo.reset(); }

    // A w x h board, every cell holding a piece of the shape in one of four colours.
    void makeGame(int w, int h, std::uint8_t shape, bool square = true, bool launcher = false) {
        static const float colours[4][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 0}};
        gameInfo = std::make_unique<GameInfo>();
        gameInfo->boardWidth = static_cast<std::uint8_t>(w);
        gameInfo->boardHeight = static_cast<std::uint8_t>(h);
        gameInfo->squareShapes = square;
        gameInfo->hasLauncher = launcher;
        gameInfo->score = 7;
        gameInfo->board.resize(static_cast<std::size_t>(w) * h);
        for (int x = 0; x < w; ++x)
            for (int y = 0; y < h; ++y) {
                BoardPiece& p = cell(x, y);
                const float* c = colours[(x + 2 * y) % 4];
                p.red = c[0], p.green = c[1], p.blue = c[2], p.shapeIndex = shape;
                p.x = static_cast<std::uint32_t>(x), p.y = static_cast<std::uint32_t>(y);
                p.pieceID = static_cast<std::uint32_t>(x * h + y + 1);
            }
    }
    BoardPiece& cell(int x, int y) { return gameInfo->board[static_cast<std::size_t>(x) * gameInfo->boardHeight + y]; }
    struct Rect {
        int x0, y0, x1, y1, cx, cy;  // corners, and the lower middle every filled figure covers
    };
    Rect cellRect(int x, int y) const {
        const BoardLayout L = computeBoardLayout(*gameInfo);
        const float X = x * L.w + L.left, Y = y * L.h + L.m;
        return {int(X), int(Y), int(X + L.pw), int(Y + L.ph), int(X + L.pw / 2), int(Y + L.ph / 4)};
    }
    Rgb probe(int x, int y) const { return pixelAt(cellRect(x, y).cx, cellRect(x, y).cy); }

    RecordingHost host;
    CountingWindow window;
    GameView view{host, window.callbacks()};
};

TEST_F(GameViewTest, FrameAndPiecesStandAtTheirComputedPlaces) {
    const struct {
        int w, h;
        bool square, launcher;
        int left, right, top, bottom;  // the frame's sides; 0: not checked
    } cases[] = {{5, 5, true, false, 132, 892, 764, 7}, {8, 8, true, true, 172, 852, 724, 47},
                 {10, 5, false, false, 132, 892, 0, 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.w << " x " << c.h << (c.launcher ? " with launcher" : ""));
        makeGame(c.w, c.h, 2, c.square, c.launcher);
        view.drawBoard();
        for (int x : {c.left, c.right}) {
            EXPECT_GT(countPixels(x - 2, 300, x + 2, 300, isFrame), 0) << "side at " << x;
            EXPECT_EQ(countPixels(x - 20, 300, x - 4, 300, isFrame) + countPixels(x + 4, 300, x + 20, 300, isFrame), 0);
        }
        for (int y : {c.top, c.bottom}) EXPECT_TRUE(!y || countPixels(500, y - 2, 500, y + 2, isFrame) > 0) << "side at " << y;
        for (int x = 0; x < c.w; ++x)
            for (int y = 0; y < c.h; ++y) EXPECT_TRUE(looksLike(probe(x, y), cell(x, y))) << "cell " << x << "," << y;
    }
}

TEST_F(GameViewTest, AllTenFiguresAreVisibleDespiteBackFaceCulling) {
    makeGame(10, 1, 2, false);
    for (int x = 0; x < 10; ++x) {
        cell(x, 0).shapeIndex = static_cast<std::uint8_t>(x + 1);
        cell(x, 0).red = cell(x, 0).green = cell(x, 0).blue = 1.0f;
    }
    view.drawBoard();
    auto lit = [](const Rgb& p) { return p.r > 60 && p.g > 60 && p.b > 60; };
    for (int shape = 1; shape <= 10; ++shape) {
        SCOPED_TRACE(testing::Message() << "figure " << shape);
        const Rect r = cellRect(shape - 1, 0);
        const int mx = (r.x0 + r.x1) / 2, my = (r.y0 + r.y1) / 2;
        EXPECT_GT(countPixels(r.x0, r.y0, r.x1, r.y1, lit), 20);
        const bool filled = shape == 2 || shape == 5 || shape == 7 || shape == 9;
        EXPECT_TRUE(!filled || lit(pixelAt(mx, my)));
        EXPECT_TRUE(filled || shape == 1 || isBlack(pixelAt(mx + 2, my + 7))) << "outlines are hollow";
        if (shape == 9) {  // both bars of the cross
            EXPECT_TRUE(lit(pixelAt(mx, r.y0 + (r.y1 - r.y0) * 9 / 10)));
            EXPECT_TRUE(lit(pixelAt(r.x0 + (r.x1 - r.x0) / 10, my)));
        }
    }
}

TEST_F(GameViewTest, WithoutBackgroundOnlyRealPiecesShowOnBlack) {
    makeGame(4, 4, 0);  // shape 0 draws nothing
    cell(1, 1).pieceID = 0;
    cell(1, 1).shapeIndex = 2;
    cell(1, 1).selected = 1;  // an empty cell, even selected, shows nothing
    glClearColor(0.2f, 0.6f, 0.9f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    ASSERT_EQ(view.bgTexture(), 0u);
    view.drawBoard();
    EXPECT_EQ(countPixels(cellRect(0, 0).x0, cellRect(0, 0).y0, cellRect(3, 3).x1, cellRect(3, 3).y1,
                          [](const Rgb& p) { return !isBlack(p); }), 0);
    for (auto [x, y] : {std::pair{60, 300}, {1000, 20}, {1000, 760}}) EXPECT_TRUE(isBlack(pixelAt(x, y)));
}

TEST_F(GameViewTest, SelectionIsOutlinedInTheSelectColourButNotBySingleCellRedraws) {
    makeGame(6, 6, 0);
    cell(2, 3).selected = 1;
    auto sides = [](const Rect& q, bool (*colour)(const Rgb&)) {  // bottom, top, left
        const int my = (q.y0 + q.y1) / 2;
        return (countPixels(q.cx, q.y0 - 3, q.cx, q.y0 + 1, colour) > 0) + (countPixels(q.cx, q.y1 - 1, q.cx, q.y1 + 3, colour) > 0) +
               (countPixels(q.x0 - 3, my, q.x0 + 1, my, colour) > 0);
    };
    view.drawBoard();
    EXPECT_EQ(sides(cellRect(2, 3), isRed), 3);
    EXPECT_EQ(sides(cellRect(4, 1), isRed), 0) << "another cell";
    gSelectColor = SelectColor{0.0f, 1.0f, 0.0f};  // the removal flash's colour
    view.drawBoard();
    EXPECT_EQ(sides(cellRect(2, 3), [](const Rgb& p) { return p.g > 90 && p.r < 40 && p.b < 40; }), 3);

    gSelectColor = kDefaultSelectColor;
    BoardPiece& p = cell(2, 3);
    p.shapeIndex = 3;  // a blue square outline
    p.red = p.green = 0.0f, p.blue = 1.0f;
    glClear(GL_COLOR_BUFFER_BIT);
    view.drawIndividualPiece(&p);
    EXPECT_EQ(sides(cellRect(2, 3), isRed), 0);
    EXPECT_EQ(sides(cellRect(2, 3), [](const Rgb& q) { return q.b > 90 && q.r < 40 && q.g < 40; }), 3) << "the figure";
}

TEST_F(GameViewTest, ScoreAndNameAreWrittenBesideTheBoardAndCut) {
    makeGame(5, 5, 0);
    const BoardLayout L = computeBoardLayout(*gameInfo);
    const int sx = int(winWidth - L.left + 10), sy = int(winHeight - L.m - 9);
    auto drawn = [&](std::uint64_t score, const std::string& name, int x0, int x1) {
        gameInfo->score = score, gameInfo->gameName = name;
        view.drawBoard();
        EXPECT_EQ(countPixels(2, sy - 60, 1023, sy - 20, isText), 0) << "nothing below the baseline row";
        return countPixels(x0, sy - 5, x1, sy + 18, isText);
    };
    const int score4 = drawn(7, "Test Game", sx, 1023), score11 = drawn(12345678901ull, "", sx, 1023);
    EXPECT_GT(score4, 30);
    EXPECT_GT(score11, score4);
    EXPECT_EQ(drawn(123456789012345ull, "", sx, 1023), score11) << "cut to 11 digits";
    const int name63 = drawn(7, std::string(63, 'i'), 2, sx - 20);
    EXPECT_GT(name63, drawn(7, std::string(62, 'i'), 2, sx - 20));
    EXPECT_EQ(drawn(7, std::string(200, 'i'), 2, sx - 20), name63) << "cut to 63 bytes";
}

TEST_F(GameViewTest, NebulaIsStretchedOverTheWindowUnflipped) {
    testing::internal::CaptureStderr();
    view.loadBGTexture();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    ASSERT_NE(view.bgTexture(), 0u);
    const std::string path = resourceFolder() + "/Nebula.png";
    EXPECT_LT(std::filesystem::file_size(path), 4u << 20);
    std::unique_ptr<SDL_Surface, void (*)(SDL_Surface*)> image(IMG_Load(path.c_str()), SDL_FreeSurface);
    ASSERT_TRUE(image);
    ASSERT_EQ(image->w, 1920);
    ASSERT_EQ(image->h, 1200);
    image.reset(SDL_ConvertSurfaceFormat(image.get(), SDL_PIXELFORMAT_RGBA32, 0));
    makeGame(5, 5, 2);
    view.drawBoard();
    // Window point (x, y) shows texel (x * 1920 / 1024, y * 1200 / 768): first row at the bottom.
    for (auto [x, y] : {std::pair{30, 30}, {60, 400}, {100, 700}, {950, 50}, {990, 380}, {920, 600}, {20, 200}}) {
        const auto* t = static_cast<const unsigned char*>(image->pixels) + int((y + 0.5) * 1200 / 768) * image->pitch +
                        int((x + 0.5) * 1920 / 1024) * 4;
        const Rgb got = pixelAt(x, y);
        EXPECT_TRUE(near(got, t[0], t[1], t[2], 40))
            << x << "," << y << " shows " << got.r << "," << got.g << "," << got.b << " not " << +t[0] << "," << +t[1] << "," << +t[2];
    }
    EXPECT_GT(countPixels(0, 0, 120, 767, [](const Rgb& p) { return p.r + p.g + p.b > 120; }), 500) << "not all dark";
}

TEST_F(GameViewTest, MissingOrBrokenNebulaLeavesNoTextureAndSaysWhere) {
    const std::string broken = testing::TempDir() + "broken-nebula.png";
    std::ofstream(broken, std::ios::binary) << "\x89PNG\r\n\x1a\n this is not really an image";
    for (const std::string& path : {std::string("/nonexistent/Nebula.png"), broken}) {
        testing::internal::CaptureStderr();
        view.loadBGTextureFromFile(path);
        const std::string errors = testing::internal::GetCapturedStderr();
        EXPECT_EQ(view.bgTexture(), 0u);
        EXPECT_NE(errors.find(path), std::string::npos) << errors;
        EXPECT_TRUE(path == broken || std::count(errors.begin(), errors.end(), '\n') == 1) << errors;
    }
    std::filesystem::remove(broken);
}

TEST_F(GameViewTest, SingleCellRedrawErasesToWhatLiesUnderAndDrawsThePiece) {
    makeGame(5, 5, 2);
    view.drawBoard();
    BoardPiece eraser = cell(3, 2);
    eraser.red = eraser.green = eraser.blue = 0.0f;
    const Rgb shown = probe(3, 2);
    view.drawIndividualPiece(&eraser);
    EXPECT_TRUE(near(probe(3, 2), shown.r, shown.g, shown.b, 2)) << "without a background erasing paints nothing";

    view.loadBGTexture();
    const std::uint32_t id = std::exchange(cell(1, 1).pieceID, 0);
    view.drawBoard();
    const Rgb under = probe(1, 1);
    cell(1, 1).pieceID = id;
    view.drawBoard();
    const Rgb piece = probe(1, 1);
    ASSERT_FALSE(near(piece, under.r, under.g, under.b, 30));
    eraser = cell(1, 1);
    eraser.red = eraser.green = eraser.blue = 0.0f;
    const int before = window.flushes;
    view.drawIndividualPiece(&eraser);
    EXPECT_EQ(window.flushes, before + 1);
    EXPECT_TRUE(near(probe(1, 1), under.r, under.g, under.b, 12));
    EXPECT_TRUE(looksLike(probe(2, 1), cell(2, 1))) << "the neighbour is untouched";
    view.drawIndividualPiece(&cell(1, 1));
    EXPECT_TRUE(near(probe(1, 1), piece.r, piece.g, piece.b, 12));
}

TEST_F(GameViewTest, FallingPieceStepsCellByCellAndLeavesTheBoardAlone) {
    makeGame(5, 5, 2);
    view.loadBGTexture();
    view.drawBoard();
    BoardPiece moving = cell(2, 4);
    moving.red = 1.0f, moving.green = 0.0f, moving.blue = 1.0f;  // magenta: no board piece has it
    const std::vector<BoardPiece> boardBefore = gameInfo->board;
    const auto start = std::chrono::steady_clock::now();
    view.animatePiece(moving, 2, 4, 2, 1);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(3)) << "1 ms a step";
    EXPECT_EQ(window.flushes, 7) << "one board, then three steps of an erase and a draw";
    EXPECT_TRUE(looksLike(probe(2, 1), moving));
    for (int y : {4, 3, 2}) EXPECT_FALSE(looksLike(probe(2, y), moving)) << "row " << y;
    for (std::size_t i = 0; i < boardBefore.size(); ++i)
        EXPECT_TRUE(gameInfo->board[i].pieceID == boardBefore[i].pieceID && gameInfo->board[i].red == boardBefore[i].red);
    // Start at the end still redraws once; a diagonal and an end off the line both arrive.
    const struct {
        std::uint32_t x0, y0, x1, y1;
        int flushes;
    } moves[] = {{0, 0, 0, 0, 2}, {0, 0, 3, 3, 6}, {4, 0, 0, 2, 8}};
    for (const auto& m : moves) {
        const int before = window.flushes;
        view.animatePiece(cell(0, 0), m.x0, m.y0, m.x1, m.y1);
        EXPECT_EQ(window.flushes - before, m.flushes) << m.x0 << "," << m.y0 << " to " << m.x1 << "," << m.y1;
    }
}

TEST_F(GameViewTest, SpikyPiecesTurnWhenSelectedAndTheirModelIsReleasedOnce) {
    makeGame(4, 4, 1);
    cell(1, 1).selected = 1;
    const Rect s = cellRect(1, 1);
    auto snapshot = [&] {
        std::vector<int> v;
        for (int y = s.y0 + 4; y < s.y1 - 4; y += 6)
            for (int x = s.x0 + 4; x < s.x1 - 4; x += 6) v.push_back(pixelAt(x, y).r + pixelAt(x, y).g);
        return v;
    };
    const std::int64_t rot = rotValue;
    testing::internal::CaptureStdout();
    view.drawBoard();
    EXPECT_EQ(rotValue, rot + 3);
    const std::vector<int> first = snapshot();
    for (int x = 0; x < 4; ++x)
        for (int y = 0; y < 4; ++y) {
            const Rect r = cellRect(x, y);
            const auto mine = [&](const Rgb& q) { return !isBlack(q) && looksLike(q, cell(x, y)); };
            EXPECT_GT(countPixels(r.x0, r.y0, r.x1, r.y1, mine), (r.x1 - r.x0) * (r.y1 - r.y0) / 20) << x << "," << y;
        }
    for (int i = 0; i < 10; ++i) view.drawBoard();
    EXPECT_EQ(rotValue, rot + 33);
    EXPECT_NE(snapshot(), first) << "a selected spiky piece turns 3 degrees a frame";
    testing::internal::GetCapturedStdout();

    for (const char* said : {"Deleting sprite 1\n", ""}) {
        testing::internal::CaptureStdout();
        view.clearPieceSprites(0);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), said);
    }
    testing::internal::CaptureStdout();
    view.drawBoard();
    testing::internal::GetCapturedStdout();
    testing::internal::CaptureStdout();
    view.clearPieceSprites(1);  // only marks the slots empty
    view.clearPieceSprites(0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

}  // namespace
}  // namespace tolvar::test
