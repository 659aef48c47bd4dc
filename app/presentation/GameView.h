// The game window's drawing: the board and its pieces, single-cell redraws and falling pieces,
// and the animated score screen, with legacy OpenGL in the game window's context.
#pragma once

#include <array>
#include <cstdint>
#include <functional>

#include "3DSpriteLib.h"
#include "engine/Host.h"
#include "engine/View.h"
#include "platform/PropertyList.h"
#include "rules/GameInfo.h"

namespace tolvar {

class GameView : public View {
public:
    // What the drawing needs from the window that owns the context.
    struct Window {
        std::function<void()> flushBuffer;                   // shows what was drawn (after glFlush)
        std::function<void(double&, double&)> mouseLocation;  // the mouse in screen coordinates, origin lower left
        std::function<void()> display;                       // the window's display after a score frame
    };

    GameView(Host& host, Window window);
    ~GameView() override;

    // The fixed OpenGL state of the game window (projection, rectangle textures, lights,
    // material, depth test), set once right after the context is made current.
    void initWindowState();
    // loadBGTexture: the "Nebula" resource as a rectangle texture; 0 when it cannot be read.
    void loadBGTexture();
    std::uint32_t bgTexture() const { return bgTexture_; }

    // View
    void drawBoard() override;
    void animatePiece(const BoardPiece& piece, std::uint32_t startX, std::uint32_t startY,
                      std::uint32_t endX, std::uint32_t endY) override;
    void displayScores(const Value& scores, int highlight) override;
    void clearPieceSprites(int forget) override;
    void pauseForFlash() override;

    void drawPiece(const BoardPiece* piece, float X, float Y, float width, float height);
    void drawIndividualPiece(const BoardPiece* piece);
    // scoresTimerFired: with the timer's list of scores.
    void scoresTimerFired(const Value& scores);

private:
    Host& host_;
    Window window_;
    std::uint32_t bgTexture_ = 0;
    std::array<SpritePtr, 11> pieceSprites;
    // ... (the presentation engineer completes the private state)
};

}  // namespace tolvar
