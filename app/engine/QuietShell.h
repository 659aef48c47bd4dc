// A desktop that shows nothing: every view and host operation does nothing, and best scores go to "BestScores.dict" in the folder given. The headless runner, the
// benchmarks and the fuzz targets build on it and override what they need to see.
#pragma once

#include <string>

#include "engine/Host.h"
#include "engine/View.h"
#include "core/BestScoresFile.h"

namespace tolvar {

class QuietView : public View {
public:
    void drawBoard(const GameInfo&) override {}
    void animatePiece(const GameInfo&, const BoardPiece&, std::uint32_t, std::uint32_t, std::uint32_t,
                      std::uint32_t) override {}
    void displayScores(const Value&, int) override {}
    void clearPieceSprites(int) override {}
    void pauseForFlash() override {}
    void showMotion(bool) override {}
};

class QuietHost : public Host {
public:
    explicit QuietHost(std::string dataFolder = ".") : scores(std::move(dataFolder)) {}

    void runAlert(const std::string&, const std::string&, const std::string&) override {}
    bool scoresTimerRunning() const override { return scoresTimer; }
    void startScoresTimer(const Value&) override { scoresTimer = true; }
    void stopScoresTimer() override { scoresTimer = false; }
    void resetProjection() override {}
    void showGameWindow() override {}
    void hideGameWindow() override {}
    void showMainWindow() override {}
    void hideMainWindow() override {}
    void scheduleEngineTimers() override {}
    ScoreStore& scoreStore() override { return scores; }

    BestScoresFile scores;
    bool scoresTimer = false;
};

}  // namespace tolvar
