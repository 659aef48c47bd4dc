// A desktop that shows nothing, for the headless runner, the balance bench, the fuzz targets and
// the tests: it keeps count of what the engine asks of the view and the host, records the alerts and sounds,
// and, given a stream, prints the alerts ("alert: MESSAGE [BUTTON]") and score screens
// ("scores highlight=H: S1 S2 ...") there as lines. Best scores go to the store given, or to one
// in memory.
#pragma once

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "core/MemoryScoreStore.h"
#include "engine/Host.h"
#include "engine/View.h"

namespace tolvar {

class StandInHost : public Host {
public:
    // Best scores in memory; alerts printed to `printed` when it is given.
    explicit StandInHost(std::FILE* printed = nullptr) : scores_(ownScores_), printed_(printed) {}
    explicit StandInHost(ScoreStore& scores, std::FILE* printed = nullptr) : scores_(scores), printed_(printed) {}
    StandInHost(const StandInHost&) = delete;
    StandInHost& operator=(const StandInHost&) = delete;

    // Recorded as "title|message|button", and printed; answered at once.
    void runAlert(const std::string& title, const std::string& message, const std::string& button) override;
    bool scoresTimerRunning() const override { return scoresTimer; }
    void startScoresTimer(const Value&) override { scoresTimer = true, ++scoresTimerStarts; }
    void stopScoresTimer() override { scoresTimer = false; }
    void resetProjection() override { ++projectionResets; }
    void showGameWindow() override { gameWindowShown = true; }
    void hideGameWindow() override { gameWindowShown = false; }
    void showMainWindow() override { mainWindowShown = true; }
    void hideMainWindow() override { mainWindowShown = false; }
    void scheduleEngineTimers() override { ++timerSchedules; }
    ScoreStore& scoreStore() override { return scores_; }

    std::vector<std::string> alerts;  // title|message|button
    bool scoresTimer = false, gameWindowShown = false, mainWindowShown = true;
    int scoresTimerStarts = 0, projectionResets = 0, timerSchedules = 0;

private:
    MemoryScoreStore ownScores_;
    ScoreStore& scores_;
    std::FILE* printed_;
};

class StandInView : public View {
public:
    // Score screens printed to `printed` when it is given; a score screen starts the host's score
    // timer, as the game window's does.
    explicit StandInView(Host& host, std::FILE* printed = nullptr) : host_(host), printed_(printed) {}

    void drawBoard(const GameInfo&) override;
    // Recorded as "PIECE from X Y to X Y " when recordMoves is set.
    void animatePiece(const GameInfo&, const BoardPiece& piece, std::uint32_t x, std::uint32_t y, std::uint32_t toX,
                      std::uint32_t toY) override;
    void displayScores(const Value& scores, int highlight) override;
    void clearPieceSprites(int) override { ++spriteClears; }
    void pauseForFlash() override { flashFrames += motionShown; }
    void showMotion(bool shown) override { motionShown = shown; }
    void playSound(const std::string& sound) override { sounds.push_back(sound); }

    int draws = 0, flashFrames = 0, spriteClears = 0, scoreScreens = 0;
    bool motionShown = true;
    bool recordMoves = false;
    std::vector<std::string> moves;
    std::vector<std::string> sounds;  // every sound asked for, in order
    std::function<void()> onDraw;  // called at every frame

private:
    Host& host_;
    std::FILE* printed_;
};

}  // namespace tolvar
