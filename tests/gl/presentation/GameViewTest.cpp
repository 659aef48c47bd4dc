// The board as the player sees it: frame, pieces of every figure, selection outline, score and
// name, background image, single-cell redraws and falling pieces, probed in a real window.
#include <GL/gl.h>
#include <SDL_image.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>

#include "FileIO.h"
#include "GlTestWindow.h"
#include "engine/BoardLayout.h"
#include "engine/SelectColor.h"
#include "presentation/DrawingGlobals.h"
#include "presentation/GameView.h"
#include "rules/GameInfo.h"

namespace tolvar::test {
namespace {

// A board of w x h cells, every cell holding a piece of the given shape in one of four colours.
std::unique_ptr<GameInfo> makeGame(int w, int h, std::uint8_t shape, bool square, bool launcher) {
    auto game = std::make_unique<GameInfo>();
    game->boardWidth = static_cast<std::uint8_t>(w);
    game->boardHeight = static_cast<std::uint8_t>(h);
    game->squareShapes = square ? 1 : 0;
    game->hasLauncher = launcher ? 1 : 0;
    game->gameName = "Test Game";
    game->score = 7;
    game->board.resize(static_cast<std::size_t>(w) * h);
    static const float colours[4][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 0}};
    for (int x = 0; x < w; ++x)
        for (int y = 0; y < h; ++y) {
            BoardPiece& p = game->board[static_cast<std::size_t>(x) * h + y];
            const int c = (x + 2 * y) % 4;
            p.red = colours[c][0];
            p.green = colours[c][1];
            p.blue = colours[c][2];
            p.colorIndex = static_cast<std::uint8_t>(c + 1);
            p.shapeIndex = shape;
            p.x = static_cast<std::uint32_t>(x);
            p.y = static_cast<std::uint32_t>(y);
            p.pieceID = static_cast<std::uint32_t>(x * h + y + 1);
        }
    return game;
}

BoardPiece& cell(int x, int y) { return gameInfo->board[static_cast<std::size_t>(x) * gameInfo->boardHeight + y]; }

// The hue of a lit piece: the piece's own channels stand out, the others stay dark.
bool looksLike(const Rgb& p, float r, float g, float b) {
    auto channelOk = [](int v, float want) { return want > 0.5f ? v > 90 : v < 40; };
    return channelOk(p.r, r) && channelOk(p.g, g) && channelOk(p.b, b);
}

bool isBlack(const Rgb& p) { return p.r < 8 && p.g < 8 && p.b < 8; }

class GameViewTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string why;
        ASSERT_TRUE(openTestWindow(why)) << "no OpenGL window: " << why;
        view = std::make_unique<GameView>(host, window.callbacks());
        gSelectColor = kDefaultSelectColor;
        gBorderColor = kDefaultBorderColor;
    }
    void TearDown() override {
        view.reset();
        gameInfo.reset();
    }

    // Where cell (x, y) lies on the screen.
    struct CellRect {
        float X, Y, W, H;
    };
    CellRect cellRect(int x, int y) const {
        const BoardLayout L = computeBoardLayout(*gameInfo);
        return {static_cast<float>(x) * L.w + L.left, static_cast<float>(y) * L.h + L.m, L.pw, L.ph};
    }
    Rgb centreOf(int x, int y) const {
        const CellRect r = cellRect(x, y);
        return pixelAt(static_cast<int>(r.X + r.W / 2), static_cast<int>(r.Y + r.H / 2));
    }

    RecordingHost host;
    CountingWindow window;
    std::unique_ptr<GameView> view;
};

TEST_F(GameViewTest, WindowStateIsOnePixelPerUnitWithTheGameLights) {
    GLfloat projection[16];
    glGetFloatv(GL_PROJECTION_MATRIX, projection);
    EXPECT_FLOAT_EQ(projection[0], 2.0f / 1024.0f);
    EXPECT_FLOAT_EQ(projection[5], 2.0f / 768.0f);
    EXPECT_FLOAT_EQ(projection[10], 2.0f / 1000.0f) << "z = -500 is near, z = 500 far";
    EXPECT_FLOAT_EQ(projection[12], -1.0f);
    EXPECT_FLOAT_EQ(projection[13], -1.0f);

    GLfloat v[4];
    glGetLightfv(GL_LIGHT0, GL_POSITION, v);
    EXPECT_FLOAT_EQ(v[0], 256.0f);
    EXPECT_FLOAT_EQ(v[1], 192.0f);
    EXPECT_FLOAT_EQ(v[2], 100.0f);
    EXPECT_FLOAT_EQ(v[3], 0.0f);
    glGetLightfv(GL_LIGHT1, GL_POSITION, v);
    EXPECT_FLOAT_EQ(v[0], 512.0f);
    EXPECT_FLOAT_EQ(v[2], 70.0f);
    glGetLightfv(GL_LIGHT1, GL_DIFFUSE, v);
    EXPECT_FLOAT_EQ(v[0], 0.75f);
    glGetLightfv(GL_LIGHT0, GL_AMBIENT, v);
    EXPECT_FLOAT_EQ(v[0], 0.15f);
    GLfloat shininess = 0.0f;
    glGetMaterialfv(GL_FRONT, GL_SHININESS, &shininess);
    EXPECT_FLOAT_EQ(shininess, 128.0f);
    EXPECT_TRUE(glIsEnabled(GL_CULL_FACE));
    EXPECT_TRUE(glIsEnabled(GL_COLOR_MATERIAL));
    EXPECT_TRUE(glIsEnabled(GL_NORMALIZE));
    EXPECT_TRUE(glIsEnabled(GL_LIGHT1));
    GLint depthFunc = 0;
    glGetIntegerv(GL_DEPTH_FUNC, &depthFunc);
    EXPECT_EQ(depthFunc, GL_LEQUAL);

    // A point at any depth between the planes lands x pixels from the left, y from the bottom.
    glClearColor(0, 0, 0, 1);
    glClearDepth(1.0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glDisable(GL_LIGHTING);
    glPointSize(1.0f);
    glColor3f(1, 1, 1);
    glBegin(GL_POINTS);
    glVertex3f(100.5f, 200.5f, -490.0f);
    glVertex3f(300.5f, 400.5f, 490.0f);
    glEnd();
    glFinish();
    EXPECT_TRUE(near(pixelAt(100, 200), 255, 255, 255, 2));
    EXPECT_TRUE(near(pixelAt(300, 400), 255, 255, 255, 2));
    EXPECT_TRUE(near(pixelAt(101, 200), 0, 0, 0, 2));
}

TEST_F(GameViewTest, FrameSurroundsTheBoardAtItsComputedPlace) {
    gameInfo = makeGame(5, 5, 2, true, false);
    const BoardLayout L = computeBoardLayout(*gameInfo);
    ASSERT_FLOAT_EQ(L.left, 138.0f);
    view->drawBoard();

    auto isFrame = [](const Rgb& p) { return near(p, 127, 63, 0, 3); };
    const int leftX = static_cast<int>(L.left - 6);                       // 132
    const int rightX = static_cast<int>(winWidth - L.left + 6);           // 892
    const int topY = static_cast<int>(winHeight - L.m + 6);               // 764
    const int bottomY = static_cast<int>(L.m - 3);                        // 7
    EXPECT_GT(countPixels(leftX - 2, 300, leftX + 2, 300, isFrame), 0) << "left side";
    EXPECT_GT(countPixels(rightX - 2, 300, rightX + 2, 300, isFrame), 0) << "right side";
    EXPECT_GT(countPixels(500, topY - 2, 500, topY + 2, isFrame), 0) << "top side";
    EXPECT_GT(countPixels(500, bottomY - 2, 500, bottomY + 2, isFrame), 0) << "bottom side";
    // Nothing of the frame well inside or outside it.
    EXPECT_EQ(countPixels(leftX - 20, 300, leftX - 4, 300, isFrame), 0);
    EXPECT_EQ(countPixels(rightX + 4, 300, rightX + 20, 300, isFrame), 0);
}

TEST_F(GameViewTest, FrameFollowsTheLauncherMarginAndNonSquareCells) {
    gameInfo = makeGame(8, 8, 2, true, true);
    view->drawBoard();
    auto isFrame = [](const Rgb& p) { return near(p, 127, 63, 0, 3); };
    // 8 x 8 with a launcher: frame from (172, 47) to (852, 724).
    EXPECT_GT(countPixels(170, 400, 174, 400, isFrame), 0);
    EXPECT_GT(countPixels(850, 400, 854, 400, isFrame), 0);
    EXPECT_GT(countPixels(500, 722, 500, 726, isFrame), 0);
    EXPECT_GT(countPixels(500, 45, 500, 49, isFrame), 0);

    gameInfo = makeGame(10, 5, 2, false, false);
    view->drawBoard();
    // Not square: the board still spans 748 pixels from left 138.
    EXPECT_GT(countPixels(130, 400, 134, 400, isFrame), 0);
    EXPECT_GT(countPixels(890, 400, 894, 400, isFrame), 0);
}

TEST_F(GameViewTest, EveryCellShowsItsPieceColour) {
    gameInfo = makeGame(8, 8, 2, true, false);
    view->drawBoard();
    for (int x = 0; x < 8; ++x)
        for (int y = 0; y < 8; ++y) {
            const BoardPiece& p = cell(x, y);
            // The filled triangle covers the lower middle of its cell.
            const CellRect r = cellRect(x, y);
            const Rgb got = pixelAt(static_cast<int>(r.X + r.W / 2), static_cast<int>(r.Y + r.H / 4));
            EXPECT_TRUE(looksLike(got, p.red, p.green, p.blue))
                << "cell " << x << "," << y << " is " << got.r << "," << got.g << "," << got.b;
        }
}

TEST_F(GameViewTest, AllTenFiguresAreVisibleDespiteBackFaceCulling) {
    gameInfo = makeGame(10, 1, 2, false, false);
    for (int x = 0; x < 10; ++x) {
        cell(x, 0).shapeIndex = static_cast<std::uint8_t>(x + 1);
        cell(x, 0).red = 1.0f;
        cell(x, 0).green = 1.0f;
        cell(x, 0).blue = 1.0f;
    }
    view->drawBoard();
    auto lit = [](const Rgb& p) { return p.r > 60 && p.g > 60 && p.b > 60; };
    for (int x = 0; x < 10; ++x) {
        const CellRect r = cellRect(x, 0);
        const int shape = x + 1;
        const int cx = static_cast<int>(r.X + r.W / 2);
        const int cy = static_cast<int>(r.Y + r.H / 2);
        if (shape == 2 || shape == 5 || shape == 7 || shape == 9) {
            // Filled figures cover their centre.
            EXPECT_TRUE(lit(pixelAt(cx, cy))) << "filled figure " << shape;
        }
        if (shape == 9) {
            // Both bars of the cross: the vertical one near the top, the horizontal near the left.
            EXPECT_TRUE(lit(pixelAt(cx, static_cast<int>(r.Y + r.H * 0.9f)))) << "vertical bar";
            EXPECT_TRUE(lit(pixelAt(static_cast<int>(r.X + r.W * 0.1f), cy))) << "horizontal bar";
        }
        // Every figure puts something in its cell.
        EXPECT_GT(countPixels(static_cast<int>(r.X), static_cast<int>(r.Y), static_cast<int>(r.X + r.W),
                              static_cast<int>(r.Y + r.H), lit),
                  20)
            << "figure " << shape;
        if (shape == 3 || shape == 4 || shape == 6 || shape == 8 || shape == 10) {
            // Outlines leave their middle empty.
            EXPECT_TRUE(isBlack(pixelAt(cx + 2, cy + 7))) << "outline figure " << shape;
        }
    }
}

TEST_F(GameViewTest, ShapeZeroAndEmptyCellsDrawNothing) {
    gameInfo = makeGame(4, 4, 0, true, false);
    cell(1, 1).pieceID = 0;
    cell(1, 1).shapeIndex = 2;
    cell(1, 1).selected = 1;
    view->drawBoard();
    const BoardLayout L = computeBoardLayout(*gameInfo);
    const int notBlack = countPixels(static_cast<int>(L.left), static_cast<int>(L.m),
                                     static_cast<int>(winWidth - L.left - 1), static_cast<int>(winHeight - L.m - 1),
                                     [](const Rgb& p) { return !isBlack(p); });
    EXPECT_EQ(notBlack, 0) << "shape 0 pieces and an empty (even selected) cell show only the background";
}

TEST_F(GameViewTest, SelectedPieceGetsTheOutlineInTheSelectColour) {
    gameInfo = makeGame(6, 6, 0, true, false);
    cell(2, 3).selected = 1;
    view->drawBoard();
    const CellRect r = cellRect(2, 3);
    auto reddish = [](const Rgb& p) { return p.r > 40 && p.r > 2 * p.g && p.r > 2 * p.b; };
    const int cx = static_cast<int>(r.X + r.W / 2);
    EXPECT_GT(countPixels(cx, static_cast<int>(r.Y - 3), cx, static_cast<int>(r.Y + 1), reddish), 0) << "bottom";
    EXPECT_GT(countPixels(cx, static_cast<int>(r.Y + r.H - 1), cx, static_cast<int>(r.Y + r.H + 3), reddish), 0)
        << "top";
    EXPECT_GT(countPixels(static_cast<int>(r.X - 3), static_cast<int>(r.Y + r.H / 2), static_cast<int>(r.X + 1),
                          static_cast<int>(r.Y + r.H / 2), reddish),
              0)
        << "left";
    // The neighbour is not outlined.
    const CellRect n = cellRect(3, 3);
    EXPECT_EQ(countPixels(static_cast<int>(n.X + n.W / 2), static_cast<int>(n.Y - 3),
                          static_cast<int>(n.X + n.W / 2), static_cast<int>(n.Y + 1), reddish),
              0);

    // The removal flash's colour is what the outline shows.
    gSelectColor = SelectColor{0.0f, 1.0f, 0.0f};
    view->drawBoard();
    auto greenish = [](const Rgb& p) { return p.g > 90 && p.r < 40 && p.b < 40; };
    EXPECT_GT(countPixels(cx, static_cast<int>(r.Y - 3), cx, static_cast<int>(r.Y + 1), greenish), 0);
}

TEST_F(GameViewTest, ScoreAndNameAreWrittenBesideTheBoard) {
    gameInfo = makeGame(5, 5, 0, true, false);
    auto purple = [](const Rgb& p) { return near(p, 127, 0, 127, 3); };
    const BoardLayout L = computeBoardLayout(*gameInfo);
    const int sx = static_cast<int>(winWidth - L.left + 10);
    const int sy = static_cast<int>(winHeight - L.m - 9);
    view->drawBoard();
    const int scorePixels = countPixels(sx, sy - 5, sx + 120, sy + 18, purple);
    const int namePixels = countPixels(2, sy - 5, 120, sy + 18, purple);
    EXPECT_GT(scorePixels, 30);
    EXPECT_GT(namePixels, 30);
    // Below the baseline row there is no text.
    EXPECT_EQ(countPixels(sx, sy - 60, sx + 120, sy - 20, purple), 0);

    // A longer score draws more; an overlong name and score are cut, never overrun.
    gameInfo->score = 123456789012345ull;
    gameInfo->gameName = std::string(200, 'W');
    view->drawBoard();
    EXPECT_GT(countPixels(sx, sy - 5, sx + 120, sy + 18, purple), scorePixels);
    const int longName = countPixels(2, sy - 5, 1023, sy + 18, purple);
    EXPECT_GT(longName, namePixels);
}

TEST_F(GameViewTest, WithoutBackgroundTheWindowIsBlack) {
    gameInfo = makeGame(5, 5, 2, true, false);
    glClearColor(0.2f, 0.6f, 0.9f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    ASSERT_EQ(view->bgTexture(), 0u);
    view->drawBoard();
    EXPECT_TRUE(isBlack(pixelAt(60, 300)));
    EXPECT_TRUE(isBlack(pixelAt(1000, 20)));
    EXPECT_TRUE(isBlack(pixelAt(1000, 760)));
}

// The colour of the background image at window point (x, y): texel (x * 1920 / 1024,
// y * 1200 / 768), the picture's first row lying at the window's bottom.
Rgb expectedBackground(SDL_Surface* rgba, int x, int y) {
    const int tx = static_cast<int>((x + 0.5) * 1920.0 / 1024.0);
    const int ty = static_cast<int>((y + 0.5) * 1200.0 / 768.0);
    const auto* px = static_cast<const unsigned char*>(rgba->pixels) + static_cast<std::size_t>(ty) * rgba->pitch +
                     static_cast<std::size_t>(tx) * 4;
    return Rgb{px[0], px[1], px[2]};
}

struct SurfaceFree {
    void operator()(SDL_Surface* s) const { SDL_FreeSurface(s); }
};

TEST_F(GameViewTest, NebulaIsStretchedOverTheWindowUnflipped) {
    testing::internal::CaptureStderr();
    view->loadBGTexture();
    const std::string errors = testing::internal::GetCapturedStderr();
    ASSERT_NE(view->bgTexture(), 0u) << errors;
    EXPECT_EQ(errors, "");

    const std::string path = resourceFolder() + "/Nebula.png";
    std::unique_ptr<SDL_Surface, SurfaceFree> image(IMG_Load(path.c_str()));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->w, 1920);
    EXPECT_EQ(image->h, 1200);
    std::unique_ptr<SDL_Surface, SurfaceFree> rgba(SDL_ConvertSurfaceFormat(image.get(), SDL_PIXELFORMAT_RGBA32, 0));
    ASSERT_TRUE(rgba);

    gameInfo = makeGame(5, 5, 2, true, false);
    view->drawBoard();
    // Points outside the board and its texts, spread over the window, including dark sky and
    // bright cloud.
    const int points[][2] = {{30, 30}, {60, 400}, {100, 700}, {950, 50}, {990, 380}, {920, 600}, {20, 200}};
    int matched = 0;
    for (const auto& pt : points) {
        const Rgb want = expectedBackground(rgba.get(), pt[0], pt[1]);
        const Rgb got = pixelAt(pt[0], pt[1]);
        if (near(got, want.r, want.g, want.b, 40)) ++matched;
        else
            ADD_FAILURE() << "at " << pt[0] << "," << pt[1] << " got " << got.r << "," << got.g << "," << got.b
                          << " want " << want.r << "," << want.g << "," << want.b;
    }
    EXPECT_EQ(matched, 7);
    // And the picture is not black all over.
    EXPECT_GT(countPixels(0, 0, 120, 767, [](const Rgb& p) { return p.r + p.g + p.b > 120; }), 500);
}

TEST_F(GameViewTest, MissingOrBrokenNebulaLeavesNoTextureAndSaysWhy) {
    testing::internal::CaptureStderr();
    view->loadBGTextureFromFile("/nonexistent/Nebula.png");
    std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_EQ(view->bgTexture(), 0u);
    EXPECT_NE(errors.find("/nonexistent/Nebula.png"), std::string::npos) << errors;
    EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 1) << errors;

    const std::string broken = testing::TempDir() + "broken-nebula.png";
    {
        std::ofstream out(broken, std::ios::binary);
        out << "\x89PNG\r\n\x1a\n this is not really an image";
    }
    testing::internal::CaptureStderr();
    view->loadBGTextureFromFile(broken);
    errors = testing::internal::GetCapturedStderr();
    std::remove(broken.c_str());
    EXPECT_EQ(view->bgTexture(), 0u);
    EXPECT_NE(errors.find(broken), std::string::npos) << errors;

    gameInfo = makeGame(3, 3, 2, true, false);
    view->drawBoard();
    EXPECT_TRUE(isBlack(pixelAt(20, 20)));
}

TEST_F(GameViewTest, SingleCellRedrawErasesToTheBackgroundAndDrawsThePiece) {
    view->loadBGTexture();
    ASSERT_NE(view->bgTexture(), 0u);
    gameInfo = makeGame(5, 5, 2, true, false);
    view->drawBoard();
    const CellRect r = cellRect(1, 1);
    const int px = static_cast<int>(r.X + r.W / 2);
    const int py = static_cast<int>(r.Y + r.H / 4);
    const Rgb piece = pixelAt(px, py);

    // Drawing the board without that piece shows what lies under it.
    const std::uint32_t id = cell(1, 1).pieceID;
    cell(1, 1).pieceID = 0;
    view->drawBoard();
    const Rgb under = pixelAt(px, py);
    cell(1, 1).pieceID = id;
    view->drawBoard();
    ASSERT_FALSE(near(piece, under.r, under.g, under.b, 30));

    BoardPiece eraser = cell(1, 1);
    eraser.red = eraser.green = eraser.blue = 0.0f;
    const int before = window.flushes;
    view->drawIndividualPiece(&eraser);
    EXPECT_EQ(window.flushes, before + 1);
    EXPECT_TRUE(near(pixelAt(px, py), under.r, under.g, under.b, 12));
    // The neighbours are untouched.
    EXPECT_TRUE(looksLike(centreOf(2, 1), cell(2, 1).red, cell(2, 1).green, cell(2, 1).blue) ||
                looksLike(pixelAt(static_cast<int>(cellRect(2, 1).X + r.W / 2), py), cell(2, 1).red,
                          cell(2, 1).green, cell(2, 1).blue));

    view->drawIndividualPiece(&cell(1, 1));
    EXPECT_TRUE(near(pixelAt(px, py), piece.r, piece.g, piece.b, 12));
}

TEST_F(GameViewTest, WithoutBackgroundErasingPaintsNothing) {
    gameInfo = makeGame(5, 5, 2, true, false);
    view->drawBoard();
    const CellRect r = cellRect(3, 2);
    const int px = static_cast<int>(r.X + r.W / 2);
    const int py = static_cast<int>(r.Y + r.H / 4);
    const Rgb piece = pixelAt(px, py);
    BoardPiece eraser = cell(3, 2);
    eraser.red = eraser.green = eraser.blue = 0.0f;
    view->drawIndividualPiece(&eraser);
    EXPECT_TRUE(near(pixelAt(px, py), piece.r, piece.g, piece.b, 2));
}

TEST_F(GameViewTest, FallingPieceStepsCellByCellAndLeavesTheBoardAlone) {
    gameInfo = makeGame(5, 5, 2, true, false);
    view->loadBGTexture();
    view->drawBoard();
    BoardPiece moving = cell(2, 4);
    moving.red = 1.0f;
    moving.green = 0.0f;
    moving.blue = 1.0f;  // magenta: no board piece has it
    const std::vector<BoardPiece> boardBefore = gameInfo->board;

    const int before = window.flushes;
    const auto start = std::chrono::steady_clock::now();
    view->animatePiece(moving, 2, 4, 2, 1);
    const auto elapsed = std::chrono::steady_clock::now() - start;
    // Three steps, each an erase and a draw, each shown at once, with a pause of 1 ms.
    EXPECT_EQ(window.flushes - before, 6);
    EXPECT_GE(elapsed, std::chrono::milliseconds(3));

    const CellRect end = cellRect(2, 1);
    const Rgb arrived = pixelAt(static_cast<int>(end.X + end.W / 2), static_cast<int>(end.Y + end.H / 4));
    EXPECT_TRUE(looksLike(arrived, 1.0f, 0.0f, 1.0f)) << arrived.r << "," << arrived.g << "," << arrived.b;
    // The cells it passed through no longer show it.
    for (int y : {4, 3, 2}) {
        const CellRect c = cellRect(2, y);
        const Rgb p = pixelAt(static_cast<int>(c.X + c.W / 2), static_cast<int>(c.Y + c.H / 4));
        EXPECT_FALSE(looksLike(p, 1.0f, 0.0f, 1.0f)) << "row " << y;
    }
    ASSERT_EQ(gameInfo->board.size(), boardBefore.size());
    for (std::size_t i = 0; i < boardBefore.size(); ++i) {
        EXPECT_EQ(gameInfo->board[i].pieceID, boardBefore[i].pieceID);
        EXPECT_EQ(gameInfo->board[i].red, boardBefore[i].red);
    }
}

TEST_F(GameViewTest, FallingPieceAlwaysMakesAStepAndAlwaysArrives) {
    gameInfo = makeGame(5, 5, 2, true, false);
    view->drawBoard();
    int before = window.flushes;
    view->animatePiece(cell(0, 0), 0, 0, 0, 0);
    EXPECT_EQ(window.flushes - before, 2) << "start equal to end still redraws the cell once";

    // A diagonal, and an end off the straight line: both end at their end cell.
    before = window.flushes;
    view->animatePiece(cell(0, 0), 0, 0, 3, 3);
    EXPECT_EQ(window.flushes - before, 6);
    before = window.flushes;
    view->animatePiece(cell(0, 0), 4, 0, 0, 2);
    EXPECT_EQ(window.flushes - before, 8);
}

TEST_F(GameViewTest, SpikyPiecesAreDrawnAndTheirModelCachedUntilCleared) {
    gameInfo = makeGame(4, 4, 1, true, false);
    testing::internal::CaptureStdout();
    view->drawBoard();
    view->drawBoard();
    testing::internal::GetCapturedStdout();
    for (int x = 0; x < 4; ++x)
        for (int y = 0; y < 4; ++y) {
            const CellRect r = cellRect(x, y);
            const BoardPiece& p = cell(x, y);
            const int coloured = countPixels(static_cast<int>(r.X), static_cast<int>(r.Y), static_cast<int>(r.X + r.W),
                                             static_cast<int>(r.Y + r.H),
                                             [&](const Rgb& q) { return !isBlack(q) && looksLike(q, p.red, p.green, p.blue); });
            EXPECT_GT(coloured, static_cast<int>(r.W * r.H / 20)) << "cell " << x << "," << y;
        }

    testing::internal::CaptureStdout();
    view->clearPieceSprites(0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Deleting sprite 1\n");
    testing::internal::CaptureStdout();
    view->clearPieceSprites(0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");

    // Marking the slots empty releases nothing and says nothing.
    testing::internal::CaptureStdout();
    view->drawBoard();
    testing::internal::GetCapturedStdout();
    testing::internal::CaptureStdout();
    view->clearPieceSprites(1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST_F(GameViewTest, SingleCellRedrawShowsASelectedPieceWithoutOutline) {
    gameInfo = makeGame(4, 4, 3, true, false);
    cell(1, 2).selected = 1;
    view->drawBoard();
    const CellRect r = cellRect(1, 2);
    auto reddish = [](const Rgb& p) { return p.r > 40 && p.r > 2 * p.g && p.r > 2 * p.b; };
    const int cx = static_cast<int>(r.X + r.W / 2);
    const int below = static_cast<int>(r.Y - 1);
    ASSERT_GT(countPixels(cx - 10, below - 1, cx + 10, below, reddish), 0);

    // With no background to patch, clear the window and redraw only that cell.
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    view->drawIndividualPiece(&cell(1, 2));
    EXPECT_EQ(countPixels(cx - 10, below - 1, cx + 10, below, reddish), 0) << "no outline";
    // The square outline figure itself is there, in the piece's colour.
    const BoardPiece& p = cell(1, 2);
    EXPECT_GT(countPixels(static_cast<int>(r.X) - 1, static_cast<int>(r.Y + r.H / 2), static_cast<int>(r.X) + 1,
                          static_cast<int>(r.Y + r.H / 2), [&](const Rgb& q) { return looksLike(q, p.red, p.green, p.blue); }),
              0);
}

TEST_F(GameViewTest, SelectedSpikyPieceTurnsFromFrameToFrame) {
    gameInfo = makeGame(3, 3, 1, true, false);
    cell(1, 1).selected = 1;
    const CellRect r = cellRect(1, 1);
    window.mouseX = r.X;
    window.mouseY = r.Y;
    testing::internal::CaptureStdout();
    const std::int64_t rotBefore = rotValue;
    view->drawBoard();
    EXPECT_EQ(rotValue, rotBefore + 3);
    std::vector<int> first;
    auto snapshot = [&] {
        std::vector<int> v;
        for (int y = static_cast<int>(r.Y) + 4; y < static_cast<int>(r.Y + r.H) - 4; y += 6)
            for (int x = static_cast<int>(r.X) + 4; x < static_cast<int>(r.X + r.W) - 4; x += 6) {
                const Rgb p = pixelAt(x, y);
                v.push_back(p.r + p.g + p.b);
            }
        return v;
    };
    first = snapshot();
    for (int i = 0; i < 10; ++i) view->drawBoard();
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(rotValue, rotBefore + 33);
    EXPECT_NE(snapshot(), first) << "a selected spiky piece turns 3 degrees a frame";
}

}  // namespace
}  // namespace tolvar::test
