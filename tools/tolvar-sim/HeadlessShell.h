// The desktop as the headless runner stands in for it: alerts and the score screen become
// lines on standard output, drawing and delays do nothing, timers run only when told.
#pragma once

#include <string>

#include "engine/Host.h"
#include "engine/View.h"

namespace tolvar::sim {

class HeadlessHost : public Host {
public:
    CurrentEvent currentEvent() override { return event; }
    // "alert: MESSAGE [BUTTON]", dismissed at once.
    void runAlert(const std::string& title, const std::string& message,
                  const std::string& button) override;
    bool scoresTimerRunning() const override { return scoresTimer_; }
    void startScoresTimer(const Value&) override { scoresTimer_ = true; }
    void stopScoresTimer() override { scoresTimer_ = false; }
    void resetProjection() override {}
    void showGameWindow() override {}
    void hideGameWindow() override {}
    void showMainWindow() override {}
    void hideMainWindow() override {}
    void scheduleEngineTimers() override {}
    std::string dataFolder() override;

    CurrentEvent event;  // what the game window last saw

private:
    bool scoresTimer_ = false;
};

class HeadlessView : public View {
public:
    explicit HeadlessView(Host& host) : host_(host) {}
    void drawBoard() override {}
    void animatePiece(const BoardPiece&, std::uint32_t, std::uint32_t, std::uint32_t,
                      std::uint32_t) override {}
    // "scores highlight=H:" and the first 20 scores.
    void displayScores(const Value& scores, int highlight) override;
    void clearPieceSprites(int) override {}
    void pauseForFlash() override {}

private:
    Host& host_;
};

}  // namespace tolvar::sim
