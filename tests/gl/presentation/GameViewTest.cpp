// The board and the score screen as the player sees them, probed in a real window. (One-cell
// patches and falling pieces: the redraw test, against a full redraw of each frame.)
#include <GL/gl.h>
#include <SDL_image.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string>
#include <tuple>

#include "FileIO.h"
#include "GlTestWindow.h"
#include "engine/BoardLayout.h"

namespace tolvar::test {
namespace {

bool isBlack(const Rgb& p) { return p.r < 8 && p.g < 8 && p.b < 8; }
bool isRed(const Rgb& p) { return p.r > 40 && p.r > 2 * p.g && p.r > 2 * p.b; }
// The texts' colours where their glyphs are solid, and their dark backing.
bool nearTone(const Rgb& p, TextTone tone) {
    const float* c = toneColour(tone);
    return near(p, int(c[0] * 255), int(c[1] * 255), int(c[2] * 255), 6);
}
bool isFigure(const Rgb& p) { return nearTone(p, TextTone::Figure); }
bool isLabel(const Rgb& p) { return nearTone(p, TextTone::Label); }
bool isHeading(const Rgb& p) { return nearTone(p, TextTone::Heading); }
bool isRow(const Rgb& p) { return nearTone(p, TextTone::Row); }
bool isHighlight(const Rgb& p) { return nearTone(p, TextTone::Highlight); }
bool isBacking(const Rgb& p) { return p.r + p.g + p.b < 120; }
int inkIn(const TextBox& b, bool (*colour)(const Rgb&)) { return countPixels(b.x, b.y, b.right() - 1, b.top() - 1, colour); }
// A lit piece: its own colour channels stand out, the others stay dark.
bool looksLike(const Rgb& p, const BoardPiece& c) {
    auto ok = [](int v, float want) { return want > 0.5f ? v > 90 : v < 40; };
    return ok(p.r, c.red) && ok(p.g, c.green) && ok(p.b, c.blue);
}

class GameViewTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string why;
        ASSERT_TRUE(openTestWindow(why)) << why;
        makeGame(4, 4, 0);
    }
    // A w x h board of pieces of one shape in four colours; neighbours never share a colour.
    void makeGame(int w, int h, std::uint8_t shape, bool square = true, bool launcher = false) {
        gameInfo = std::make_unique<GameInfo>();
        gameInfo->boardWidth = static_cast<std::uint8_t>(w), gameInfo->boardHeight = static_cast<std::uint8_t>(h);
        gameInfo->squareShapes = square, gameInfo->hasLauncher = launcher, gameInfo->score = 7;
        gameInfo->gameName = "Vexamor";
        gameInfo->board.resize(static_cast<std::size_t>(w) * h);
        for (int x = 0; x < w; ++x)
            for (int y = 0; y < h; ++y) {
                BoardPiece& p = cell(x, y);
                const int c = (x + 2 * y) % 4;  // red, green, blue, yellow
                p.red = c == 0 || c == 3, p.green = c == 1 || c == 3, p.blue = c == 2, p.shapeIndex = shape;
                p.x = static_cast<std::uint32_t>(x), p.y = static_cast<std::uint32_t>(y), p.pieceID = p.x * h + p.y + 1;
            }
    }
    BoardPiece& cell(int x, int y) { return gameInfo->board[static_cast<std::size_t>(x) * gameInfo->boardHeight + y]; }
    struct Rect {  // corners, and the lower middle that filled figures cover
        int x0, y0, x1, y1, cx, cy;
    };
    Rect cellRect(int x, int y) const {
        const BoardLayout L = computeBoardLayout(*gameInfo);
        const float X = x * L.w + L.left, Y = y * L.h + L.m;
        return {int(X), int(Y), int(X + L.pw), int(Y + L.ph), int(X + L.pw / 2), int(Y + L.ph / 4)};
    }
    Rgb probe(int x, int y) const { return pixelAt(cellRect(x, y).cx, cellRect(x, y).cy); }
    // How many of the cell's four sides (bottom, top, left, right) show the colour.
    int sidesOutlined(int x, int y, bool (*colour)(const Rgb&)) const {
        const Rect r = cellRect(x, y);
        const int my = (r.y0 + r.y1) / 2;
        return (countPixels(r.cx, r.y0 - 3, r.cx, r.y0 + 1, colour) > 0) + (countPixels(r.cx, r.y1 - 1, r.cx, r.y1 + 3, colour) > 0) +
               (countPixels(r.x0 - 3, my, r.x0 + 1, my, colour) > 0) + (countPixels(r.x1 - 1, my, r.x1 + 3, my, colour) > 0);
    }

    // The window's callbacks, with the fixture's game as the running one.
    GameView::Window withGame(GameView::Window callbacks) {
        callbacks.game = [this] { return gameInfo.get(); };
        return callbacks;
    }

    std::unique_ptr<GameInfo> gameInfo;
    StandInHost host;
    CountingWindow window;
    GameView view{host, withGame(window.callbacks())};
};

TEST_F(GameViewTest, FrameAndPiecesStandAtTheirComputedPlaces) {
    // Board w x h of pieces of a shape, square cells, launcher; the frame's sides (0: not checked).
    const int cases[][9] = {{5, 5, 2, 1, 0, 132, 892, 764, 7}, {8, 8, 2, 1, 1, 172, 852, 724, 47},
                            {10, 5, 2, 0, 0, 132, 892, 0, 0}, {4, 4, 1, 1, 0, 0, 0, 0, 0}};
    auto isFrame = [](const Rgb& p) { return near(p, 127, 63, 0, 3); };
    for (const auto& [w, h, shape, square, launcher, left, right, top, bottom] : cases) {
        SCOPED_TRACE(testing::Message() << w << " x " << h << " of shape " << shape << (launcher ? " with launcher" : ""));
        makeGame(w, h, static_cast<std::uint8_t>(shape), square, launcher);
        view.drawBoard(*gameInfo);
        for (int x : {left, right}) {
            if (!x) continue;
            EXPECT_GT(countPixels(x - 2, 300, x + 2, 300, isFrame), 0) << "side at " << x;
            EXPECT_EQ(countPixels(x - 20, 300, x - 4, 300, isFrame) + countPixels(x + 4, 300, x + 20, 300, isFrame), 0);
        }
        for (int y : {top, bottom}) EXPECT_TRUE(!y || countPixels(500, y - 2, 500, y + 2, isFrame) > 0) << y;
        // The score's label and digits where the layout puts them, on their backing, beside the board.
        const BoardTexts& texts = view.texts().boardTexts();
        ASSERT_EQ(texts.score.lines.size(), 2u);
        EXPECT_GT(inkIn(texts.score.lines[0].box, isLabel), 20) << "the label";
        EXPECT_GT(inkIn(texts.score.lines[1].box, isFigure), 30) << "the digits";
        EXPECT_EQ(inkIn(texts.score.lines[0].box, isFigure), 0) << "the label in its own colour";
        EXPECT_TRUE(isBacking(pixelAt(texts.score.backing.x + 1, texts.score.backing.y + 1)));
        EXPECT_TRUE(isBacking(pixelAt(texts.name.backing.right() - 2, texts.name.backing.top() - 2)));
        EXPECT_GT(inkIn(texts.name.lines.at(0).box, isHeading), 20) << "the name";
        EXPECT_TRUE(!left || texts.name.backing.right() < left - 1) << "the name clear of the frame";
        EXPECT_TRUE(!right || texts.score.backing.x > right + 1) << "the score clear of the frame";
        for (int x = 0; x < w; ++x)
            for (int y = 0; y < h; ++y) EXPECT_TRUE(looksLike(probe(x, y), cell(x, y))) << "cell " << x << "," << y;
    }
}

TEST_F(GameViewTest, ASpikyPieceAloneCoversItsCellsCentreInItsColour) {
    // The model's near half faces the player and is lit: its middle never shows the nebula
    // through a hole, drawn with the board or alone as a one-cell redraw or a falling step.
    view.loadBGTexture();
    ASSERT_NE(view.bgTexture(), 0u);
    for (const int side : {1, 4, 8, 12}) {
        for (const int colour : {0, 1, 2}) {
            SCOPED_TRACE(testing::Message() << side << " x " << side << ", colour " << colour);
            makeGame(side, side, 1);
            for (BoardPiece& p : gameInfo->board) p.pieceID = 0;
            BoardPiece& piece = cell(side / 2, side / 2);
            piece.pieceID = 1, piece.red = colour == 0, piece.green = colour == 1, piece.blue = colour == 2;
            const Rect r = cellRect(side / 2, side / 2);
            const int cx = (r.x0 + r.x1) / 2, cy = (r.y0 + r.y1) / 2;
            view.setNeedsDisplay();
            view.drawBoard(*gameInfo);
            EXPECT_TRUE(looksLike(pixelAt(cx, cy), piece)) << "with the board";
            view.drawIndividualPiece(*gameInfo, &piece);
            EXPECT_TRUE(looksLike(pixelAt(cx, cy), piece)) << "alone in its cell";
        }
    }
}

TEST_F(GameViewTest, AllTenFiguresShowDespiteBackFaceCullingOnABlackWindow) {
    makeGame(12, 1, 2, false);
    for (int x = 0; x < 12; ++x) {
        cell(x, 0).shapeIndex = static_cast<std::uint8_t>((x + 1) % 11);  // the last two: shape 0, none
        cell(x, 0).red = cell(x, 0).green = cell(x, 0).blue = 1.0f;
    }
    cell(11, 0).pieceID = 0, cell(11, 0).selected = 1;  // an empty cell, even selected, shows nothing
    glClearColor(0.2f, 0.6f, 0.9f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    view.drawBoard(*gameInfo);
    auto lit = [](const Rgb& p) { return p.r > 60 && p.g > 60 && p.b > 60; };
    for (int x = 0; x < 12; ++x) {
        const int shape = cell(x, 0).shapeIndex;
        SCOPED_TRACE(testing::Message() << "figure " << shape);
        const Rect r = cellRect(x, 0);
        const int mx = (r.x0 + r.x1) / 2, my = (r.y0 + r.y1) / 2;
        const bool filled = shape == 2 || shape == 5 || shape == 7 || shape == 9;
        EXPECT_EQ(countPixels(r.x0, r.y0, r.x1, r.y1, lit) > 20, x < 10);
        EXPECT_TRUE(!filled || lit(pixelAt(mx, my)));
        EXPECT_TRUE(filled || shape == 1 || isBlack(pixelAt(mx + 2, my + 7))) << "outlines are hollow";
        if (shape == 9) {
            EXPECT_TRUE(lit(pixelAt(mx, r.y0 + (r.y1 - r.y0) * 9 / 10))) << "the cross's upright";
            EXPECT_TRUE(lit(pixelAt(r.x0 + (r.x1 - r.x0) / 10, my))) << "the cross's bar";
        }
    }
    const Rect e0 = cellRect(10, 0), e1 = cellRect(11, 0);
    EXPECT_EQ(countPixels(e0.x0, e0.y0, e1.x1, e1.y1, [](const Rgb& p) { return !isBlack(p); }), 0);
    EXPECT_TRUE(isBlack(pixelAt(60, 300))) << "black without a background";
    EXPECT_TRUE(isBlack(pixelAt(1000, 20))) << "black without a background";
}

TEST_F(GameViewTest, SelectionIsOutlinedInTheSelectColour) {
    makeGame(6, 6, 0);
    cell(2, 3).selected = 1;
    view.drawBoard(*gameInfo);
    EXPECT_EQ(sidesOutlined(2, 3, isRed), 4);
    EXPECT_EQ(sidesOutlined(4, 1, isRed), 0) << "another cell";
    gameInfo->selectColor = SelectColor{0.0f, 1.0f, 0.0f};  // the removal flash's colour
    view.drawBoard(*gameInfo);
    EXPECT_EQ(sidesOutlined(2, 3, [](const Rgb& q) { return q.g > 90 && q.r < 40 && q.b < 40; }), 4);
}

TEST_F(GameViewTest, CursorAndHintAreOutlinedInTheirOwnColours) {
    makeGame(6, 6, 0);  // figures of shape 0 draw nothing: only the marks light the cells
    BoardMarks marks;
    GameView::Window callbacks = window.callbacks();
    callbacks.marks = [&marks] { return marks; };
    GameView marked{host, callbacks};
    auto isCursor = [](const Rgb& p) { return p.r > 230 && p.g > 230 && p.b > 230; };
    auto isHint = [](const Rgb& p) { return p.r < 40 && p.g > 200 && p.b > 230; };
    auto inside = [&](int x, int y, bool (*colour)(const Rgb&)) {  // the cell's own square
        const Rect r = cellRect(x, y);
        return countPixels(r.x0 + 2, r.y0 + 2, r.x1 - 2, r.y1 - 2, colour);
    };
    // cursor, hint cells, a selected cell; then where each colour must and must not be
    struct Case {
        std::optional<BoardCell> cursor;
        std::vector<BoardCell> hint;
    };
    for (const Case& c : {Case{BoardCell{2, 3}, {}}, Case{std::nullopt, {{4, 1}, {4, 2}}},
                          Case{BoardCell{4, 1}, {{4, 1}, {5, 1}}}, Case{}}) {
        SCOPED_TRACE(testing::Message() << (c.cursor ? "cursor " : "no cursor ") << c.hint.size() << " hinted");
        marks = {c.cursor, c.hint, {}, std::nullopt};
        cell(4, 1).selected = 1;  // a hint shows over a selection's outline
        marked.drawBoard(*gameInfo);
        for (int x = 0; x < 6; ++x)
            for (int y = 0; y < 6; ++y) {
                const bool cursor = c.cursor && *c.cursor == BoardCell{std::uint32_t(x), std::uint32_t(y)};
                const bool hinted = std::find(c.hint.begin(), c.hint.end(), BoardCell{std::uint32_t(x), std::uint32_t(y)}) != c.hint.end();
                EXPECT_EQ(inside(x, y, isCursor) > 60, cursor) << "cursor at " << x << "," << y;
                EXPECT_EQ(sidesOutlined(x, y, isHint) == 4, hinted) << "hint at " << x << "," << y;
            }
    }
}

TEST_F(GameViewTest, NebulaIsStretchedOverTheWindowUnflipped) {
    testing::internal::CaptureStderr();
    view.loadBGTexture();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    ASSERT_NE(view.bgTexture(), 0u);
    const std::string path = resourceFolder() + "/Nebula.png";
    std::unique_ptr<SDL_Surface, void (*)(SDL_Surface*)> image(IMG_Load(path.c_str()), SDL_FreeSurface);
    ASSERT_NE(image, nullptr);
    ASSERT_EQ(image->w, 1920);
    ASSERT_EQ(image->h, 1200);
    image.reset(SDL_ConvertSurfaceFormat(image.get(), SDL_PIXELFORMAT_RGBA32, 0));
    ASSERT_TRUE(image);
    makeGame(5, 5, 2);
    view.drawBoard(*gameInfo);
    // Window point (x, y) shows texel (x * 1920 / 1024, y * 1200 / 768): first row at the bottom.
    for (auto [x, y] : {std::pair{30, 30}, {60, 400}, {100, 700}, {950, 50}, {990, 380}, {920, 600}, {20, 200}}) {
        const auto* t = static_cast<const unsigned char*>(image->pixels) + int((y + 0.5) * 1200 / 768) * image->pitch +
                        int((x + 0.5) * 1920 / 1024) * 4;
        EXPECT_TRUE(near(pixelAt(x, y), t[0], t[1], t[2], 40)) << x << "," << y;
    }
    EXPECT_GT(countPixels(0, 0, 120, 767, [](const Rgb& p) { return p.r + p.g + p.b > 120; }), 500) << "not all dark";

    // A background that cannot be read (the image limits are the image reader's tests): one line
    // naming the file, and a black background.
    testing::internal::CaptureStderr();
    view.loadBGTextureFromFile("/nonexistent/Nebula.png");
    const std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_EQ(view.bgTexture(), 0u);
    EXPECT_EQ(errors, "/nonexistent/Nebula.png: cannot read the background image (no such file); the background "
                      "stays black\n");
}

TEST_F(GameViewTest, NebulaGoesUpAtTheWindowsSizeAndLooksTheSame) {
    view.loadBGTexture();
    ASSERT_NE(view.bgTexture(), 0u);
    makeGame(5, 5, 2);
    view.drawBoard(*gameInfo);
    const std::pair<int, int> points[] = {{30, 30}, {60, 400}, {100, 700}, {950, 50}, {990, 380}, {920, 600}};
    std::vector<Rgb> full;
    for (auto [x, y] : points) full.push_back(pixelAt(x, y));

    view.loadBGTexture(1024, 768);  // the picture's own size in the window
    EXPECT_EQ(view.bgTextureSize(), (TextureSize{1024, 768}));
    EXPECT_FALSE(view.bgTextureTooSmallFor(800, 600)) << "a smaller window needs no new upload";
    EXPECT_TRUE(view.bgTextureTooSmallFor(1280, 960)) << "a larger one shows more of the image's detail";
    view.setNeedsDisplay();
    view.drawBoard(*gameInfo);
    for (std::size_t i = 0; i < full.size(); ++i) {
        const auto [x, y] = points[i];
        EXPECT_TRUE(near(pixelAt(x, y), full[i].r, full[i].g, full[i].b, 40)) << x << "," << y;
    }
    view.loadBGTexture(1920, 1200);
    EXPECT_FALSE(view.bgTextureTooSmallFor(4000, 3000)) << "the image has no more to give";
}

TEST_F(GameViewTest, SpikyPiecesTurnAndTheirModelIsReleasedOnce) {
    makeGame(4, 4, 1);
    const std::int64_t rot = view.rotValue;
    testing::internal::CaptureStdout();
    for (int i = 0; i < 11; ++i) view.drawBoard(*gameInfo);
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(view.rotValue, rot + 33) << "3 degrees a frame";
    // Redraw first?, forget (only mark the slots empty), what is said.
    const std::tuple<bool, int, const char*> steps[] = {
        {false, 0, "Deleting sprite 1\n"}, {false, 0, ""}, {true, 1, ""}, {false, 0, ""}};
    for (const auto& [redraw, forget, said] : steps) {
        if (redraw) view.drawBoard(*gameInfo);
        testing::internal::CaptureStdout();
        view.clearPieceSprites(forget);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), said);
    }
}

using ScoreScreenTest = GameViewTest;

Value scoreList(int count) {
    Array entries;
    for (int i = 0; i < count; ++i) {
        Dictionary entry;
        entry.set("Score", Value::integer(10 + i));
        entry.set("Date", Value::date(Date::fromUnixTime(1700000000.0 + 3600.0 * i)));
        entries.push_back(Value::dictionary(std::move(entry)));
    }
    return Value::array(std::move(entries));
}
// The ink of score row `index` (its rank, score and date) in a colour, where the layout puts it.
int rowPixels(const GameView& view, std::size_t index, bool (*colour)(const Rgb&)) {
    const ScoreScreenLayout& l = view.texts().scoreLayout();
    if (index >= l.rowsShown) return 0;
    int ink = 0;
    for (std::size_t cell = 0; cell < 3; ++cell) ink += inkIn(l.best.lines[1 + 3 * index + cell].box, colour);
    return ink;
}
int hintPixels(const GameView& view) { return inkIn(view.texts().scoreLayout().best.lines.back().box, isLabel); }

TEST_F(ScoreScreenTest, RowsHighlightAndHintOnABlackScreenTwentyAtMost) {
    glClearColor(0.9f, 0.9f, 0.9f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    view.displayScores(scoreList(3), -1);
    const ScoreScreenLayout& l = view.texts().scoreLayout();
    EXPECT_EQ(l.rowsShown, 3u);
    for (std::size_t i = 0; i < 3; ++i) EXPECT_GT(rowPixels(view, i, isRow), 40) << "row " << i;
    EXPECT_EQ(rowPixels(view, 0, isHighlight), 0);
    EXPECT_GT(hintPixels(view), 40) << "hint";
    EXPECT_GT(inkIn(l.last.lines.at(0).box, isHeading), 30) << "the last score's heading";
    EXPECT_GT(inkIn(l.best.lines.at(0).box, isHeading), 30) << "the best scores' heading";
    EXPECT_GT(inkIn(l.last.lines.at(1).box, isFigure), 20) << "the last score";
    EXPECT_TRUE(isBacking(pixelAt(l.best.backing.right() - 2, l.best.backing.y + 1)));
    EXPECT_TRUE(isBlack(pixelAt(1010, 10)));
    EXPECT_TRUE(isBlack(pixelAt(1010, 740)));
    view.displayScores(Value::string("not a list"), -1);
    EXPECT_EQ(view.texts().scoreLayout().rowsShown, 0u);
    EXPECT_GT(hintPixels(view), 40) << "hint";
    view.displayScores(scoreList(25), 3);
    EXPECT_GT(rowPixels(view, 3, isHighlight), 40);
    EXPECT_EQ(rowPixels(view, 3, isRow), 0);
    EXPECT_GT(rowPixels(view, 19, isRow), 40);
    EXPECT_EQ(view.texts().scoreLayout().rowsShown, 20u) << "of 25 entries";
    EXPECT_GT(hintPixels(view), 40) << "hint";
}

TEST_F(ScoreScreenTest, TimerFramesKeepTheHighlightAndFlyTheModelsOut) {
    const Value scores = scoreList(5);
    view.displayScores(scores, 3);
    for (int i = 0; i < 30; ++i) view.scoresTimerFired(scores);
    EXPECT_EQ(host.scoresTimerStarts, 1);
    EXPECT_EQ(window.flushes, 31);
    EXPECT_EQ(window.displays, 31);
    EXPECT_EQ(view.currentHighlight(), 3);
    EXPECT_GT(rowPixels(view, 3, isHighlight), 40);
    EXPECT_GT(rowPixels(view, 2, isRow), 40);
    EXPECT_EQ(view.scoreModelCount(), 20);
    EXPECT_GT(countPixels(0, 0, 1023, 560, [](const Rgb& p) { return p.r + p.g + p.b > 40; }), 200) << "spread out";
    // The models fly behind the table: through its backing they show dimmed, and nothing but its
    // texts shows bright over it.
    const TextPanel& table = view.texts().scoreLayout().best;
    const auto outsideTexts = [&](bool (*colour)(const Rgb&)) {
        int n = inkIn(table.backing, colour);
        for (const PlacedText& line : table.lines) n -= inkIn(line.box, colour);
        return n;
    };
    EXPECT_GT(outsideTexts([](const Rgb& p) { return p.r + p.g + p.b > 40; }), 0) << "models behind the table";
    EXPECT_EQ(outsideTexts([](const Rgb& p) { return p.r > 110 || p.g > 110 || p.b > 110; }), 0) << "none over it";
    host.stopScoresTimer();  // the space bar
    view.displayScores(scores, -1);
    EXPECT_EQ(host.scoresTimerStarts, 2);
}

}  // namespace
}  // namespace tolvar::test
