// The game window's drawing: the board and its pieces, single-cell redraws and falling pieces,
// and the animated score screen, with legacy OpenGL in the game window's context.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "3DSpriteLib.h"
#include "Textures.h"
#include "engine/Board.h"
#include "engine/Host.h"
#include "engine/RandomSequence.h"
#include "engine/View.h"
#include "engine/BoardLayout.h"
#include "core/PropertyList.h"
#include "presentation/AlertLayout.h"
#include "presentation/LabelTexture.h"
#include "presentation/ShownBoard.h"
#include "presentation/WindowTexts.h"
#include "rules/GameInfo.h"

namespace tolvar {

// The fixed OpenGL state of the game window, on the current context: the projection (one unit a
// pixel, origin at the lower left, z = -500 near and 500 far), rectangle textures, the grey clear,
// the two lights and the material, colour material, normalising, back-face culling and the depth
// test. Anything that wants to draw as the game window does starts from it.
void setGameWindowGLState();

// A line of text over the board: beside a cell (above it, or below it at the top of the board),
// or, with no cell, over the middle of the board.
struct BoardLabel {
    std::string text;
    std::optional<BoardCell> by;
    bool operator==(const BoardLabel&) const = default;
};
// What is marked on the board: the keyboard cursor's cell and the hint's cells, the cells the
// move under the pointer would take (lit) and a line of text.
struct BoardMarks {
    std::optional<BoardCell> cursor;
    std::vector<BoardCell> hint;
    std::vector<BoardCell> lit;
    std::optional<BoardLabel> label;
};
// Their outlines' colours, unlike any piece or the selection: the cursor white inside its cell,
// the hint cyan round its cells.
inline constexpr float kCursorColor[3] = {1.0f, 1.0f, 1.0f};
inline constexpr float kHintColor[3] = {0.0f, 0.9f, 1.0f};
// A lit cell: a light wash over its piece.
inline constexpr float kLitColor[4] = {1.0f, 1.0f, 0.85f, 0.5f};
// An alert's panel over the board: light, with a dark edge, dark text and a button of its own.
inline constexpr float kAlertPanelColor[3] = {0.93f, 0.93f, 0.95f};
inline constexpr float kAlertButtonColor[3] = {0.78f, 0.84f, 0.95f};
inline constexpr float kAlertEdgeColor[3] = {0.2f, 0.2f, 0.3f};
inline constexpr float kAlertTextColor[3] = {0.05f, 0.05f, 0.1f};
// The panel's text: the window's scalable font at 18 pixels of the picture, 24 a line.
inline constexpr int kAlertTextPixels = 18;
inline constexpr float kAlertLineHeight = 24.0f;
// A text's width in that font, in the picture's units, for laying out the panel.
float alertTextWidth(const std::string& text);

class GameView : public View {
public:
    // What the drawing needs from the window that owns the context.
    struct Window {
        std::function<void()> flushBuffer;                   // shows what was drawn (after glFlush)
        std::function<void(double&, double&)> mouseLocation;  // the mouse in screen coordinates, origin lower left
        std::function<void()> display;                       // the window's display after a score frame
        std::function<BoardMarks()> marks;  // drawn over every board frame
        // The running game, or nullptr: what a redraw shows and whose score the score screen names.
        std::function<const GameInfo*()> game;
        // The next number of the game's own random sequence, which the score screen's models draw
        // from (so a board dealt after a score screen is the one the game would deal). None: the
        // view's own sequence.
        std::function<std::int32_t()> random;
        // The number of the board being played, shown under the game's name; 0 for none.
        std::function<std::uint32_t()> boardNumber;
        // The display's density against a 1080-line screen: the window's texts are never smaller
        // than a readable size times it.
        float displayScale = 1.0f;
    };

    GameView(Host& host, Window window);
    ~GameView() override;

    // The fixed OpenGL state of the game window (projection, rectangle textures, lights,
    // material, depth test), set once right after the context is made current.
    void initWindowState();
    // loadBGTexture: the "Nebula" resource as a rectangle texture; 0 when it cannot be read. It
    // goes up at the size the window shows it, pixelsWide x pixelsHigh (0: the image's own), never
    // above the image's own; the decoded pixels are not kept.
    void loadBGTexture(int pixelsWide = 0, int pixelsHigh = 0);
    // The same from an image file; a missing or unreadable file leaves bgTexture 0 and says so
    // on standard error.
    void loadBGTextureFromFile(const std::string& path, int pixelsWide = 0, int pixelsHigh = 0);
    std::uint32_t bgTexture() const { return bgTexture_; }
    // The background's texture size (0 x 0 without one).
    TextureSize bgTextureSize() const { return bgSize_; }
    // Whether a picture of pixelsWide x pixelsHigh shows the background at a coarser scale than
    // its image has: the window grew past the size it went up at.
    bool bgTextureTooSmallFor(int pixelsWide, int pixelsHigh) const;

    // View
    void drawBoard(const GameInfo& game) override;
    void animatePiece(const GameInfo& game, const BoardPiece& piece, std::uint32_t startX, std::uint32_t startY,
                      std::uint32_t endX, std::uint32_t endY) override;
    void displayScores(const Value& scores, int highlight) override;
    void clearPieceSprites(int forget) override;
    void pauseForFlash() override;
    // The piece's step of a fall: its cell (fromX, fromY) black, the piece in (toX, toY), over
    // the last frame of game's board.
    void drawFallStep(const GameInfo& game, const BoardPiece& piece, std::uint32_t fromX, std::uint32_t fromY,
                      std::uint32_t toX, std::uint32_t toY);
    // An alert's panel over what the window shows.
    void drawAlert(const AlertLayout& alert);
    void showMotion(bool shown) override;
    // The painter is silent: the desktop plays the sounds recorded with the steps it paints.
    void playSound(const std::string&) override {}

    // Symbols on the pieces (off at first): each colour's own symbol over its pieces, flat
    // figures and models alike. Marks the whole window for the next frame.
    void showSymbols(bool shown);
    bool symbolsShown() const { return symbolsShown_; }

    // Marks the whole window for the next frame of the board (something else was drawn there,
    // or the window was shown again); without it a frame redraws only the cells that changed.
    void setNeedsDisplay();
    // Marks one cell's patch for the next frame (something was drawn over it).
    void setNeedsDisplayInCell(std::uint32_t x, std::uint32_t y);

    // One piece in the rectangle X, Y, width, height; a selected one outlined in outline.
    void drawPiece(const BoardPiece* piece, float X, float Y, float width, float height, const SelectColor& outline);
    // One piece over the board's last frame, in its cell.
    void drawIndividualPiece(const GameInfo& game, const BoardPiece* piece);
    // scoresTimerFired: with the timer's list of scores.
    void scoresTimerFired(const Value& scores);

    // The last frame drawn again, whole, after the window changed size: board (the frame of the
    // board the window is showing, which may be one of a flash still playing) or the score
    // screen as it stands; nothing before the first frame.
    void redrawLastFrame(const GameInfo& board);

    // The number of score-screen models flying (20 once the first screen has been drawn).
    int scoreModelCount() const;
    int currentHighlight() const { return currHighlight; }
    // Where the last frames put the name, the score and the score screen's tables.
    const WindowTexts& texts() const { return texts_; }

    // Degrees that selected shape-1 pieces have turned: 0 at first, 3 more after every full frame.
    std::int64_t rotValue = 0;

private:
    // The shape-1 model from the sprite cache, prepared for piece width W on first use; none
    // when the model cannot be read.
    Sprite* pieceSprite(float W);
    // The figure of a piece's shape inside the rectangle X, Y, W, H (lighting already on).
    void drawFigure(const BoardPiece& piece, float X, float Y, float W, float H);
    // The background picture over the whole window at depth z, or black when there is none.
    void drawBackground(float z);
    void drawMarks(const BoardLayout& L, const BoardMarks& marks);
    // The label's line made and placed for the marks' label (labelShown_: where it stands).
    void placeLabel(const BoardLayout& L, const BoardMarks& marks);
    void drawScoresFrame(const Value& scores);
    // The board's frame: background, border, pieces and texts; within patch only the pieces that
    // reach into it (the caller clips to it).
    void drawBoardPicture(const GameInfo& game, const BoardLayout& L, const PixelRect* patch, const BoardMarks& marks);
    void makeScoreModels();
    // A number from the game's random sequence, and a shade of 0.00 to 1.00 in steps of 0.01 from it.
    std::int32_t sysRandom();
    float randomShade();
    const GameInfo* runningGame() const { return window_.game ? window_.game() : nullptr; }
    void flyScoreModels();

    Host& host_;
    Window window_;
    enum class Frame { None, Board, Scores };
    Frame lastFrame_ = Frame::None;
    Value lastScores_;
    std::uint32_t bgTexture_ = 0;
    TextureSize bgSize_;        // its texels
    TextureSize bgImageSize_;   // the image's pixels
    std::array<SpritePtr, 11> pieceSprites;
    // Sprites whose slots were marked empty without being released; freed with the view.
    std::vector<SpritePtr> forgottenSprites_;
    // What the window shows of the board.
    ShownBoard shown_;
    WindowTexts texts_;
    std::vector<TextLabel> alertLines_;  // an alert's lines of text, then its button's label
    // The board's line of text, its lower left corner and the pixels it covers on the board's
    // frames (none while there is no line).
    LabelTexture label_;
    float labelX_ = 0.0f, labelY_ = 0.0f;
    std::optional<PixelRect> labelShown_;
    // Set when "Spikes" could not be read, so a board does not try again on every frame.
    bool pieceModelMissing_ = false;
    bool motionShown_ = true;  // false: no frame of the board is drawn, no flash or fall held
    bool symbolsShown_ = false;

    // The score screen: the highlighted row (kept between games) and its 20 models, element 0
    // heading the list the others are linked into by `next`.
    int currHighlight = -1;
    std::array<SpritePtr, 20> spriteList;
    bool scoreModelsMissing_ = false;
    RandomSequence ownRandom_;  // when the window names no game's sequence
};

}  // namespace tolvar
