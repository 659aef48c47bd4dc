// The engine's View in the desktop: nothing is drawn while the engine runs. Each frame, flash
// frame, falling step and score screen goes into the window's ShowQueue, in order, for the run
// loop to play with its clock. A chain of events that runs on past any real game's has its
// motion left out, as the window would not hold it.
#pragma once

#include <optional>

#include "engine/Host.h"
#include "engine/View.h"
#include "presentation/GameView.h"
#include "presentation/ShowQueue.h"

namespace tolvar {

class ShowRecorder : public View {
public:
    ShowRecorder(ShowQueue& queue, GameView& painter, Host& host) : queue_(queue), painter_(painter), host_(host) {}

    void drawBoard(const GameInfo& game) override;
    void animatePiece(const GameInfo& game, const BoardPiece& piece, std::uint32_t startX, std::uint32_t startY,
                      std::uint32_t endX, std::uint32_t endY) override;
    // Recorded; the score timer starts at once, as the engine expects, and draws only once the
    // window has played everything before it.
    void displayScores(const Value& scores, int highlight) override;
    void clearPieceSprites(int forget) override { painter_.clearPieceSprites(forget); }
    void pauseForFlash() override;
    void showMotion(bool shown) override;
    // Goes with the next step recorded; none while a chain's motion is left out.
    void playSound(const std::string& sound) override;

private:
    ShowQueue& queue_;
    GameView& painter_;
    Host& host_;
    bool motionShown_ = true;
    std::optional<ShowStep> skippedFrame_;  // the last frame of a chain whose motion is left out
};

}  // namespace tolvar
