// A view and a host that record what the engine asks of them, and helpers that build a
// game's records by hand.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "engine/Host.h"
#include "engine/View.h"
#include "rules/GameInfo.h"

namespace tolvar::testing {

struct AnimatedMove {
    std::uint32_t pieceID, startX, startY, endX, endY;
    bool operator==(const AnimatedMove&) const = default;
};

class RecordingView : public View {
public:
    void drawBoard() override { ++draws; }
    void animatePiece(const BoardPiece& piece, std::uint32_t sx, std::uint32_t sy, std::uint32_t ex,
                      std::uint32_t ey) override {
        moves.push_back({piece.pieceID, sx, sy, ex, ey});
    }
    void displayScores(const Value& scores, int h) override {
        shownScores = scores;
        highlight = h;
        ++scoreScreens;
    }
    void clearPieceSprites(int) override { ++spriteClears; }
    void pauseForFlash() override { ++flashFrames; }

    int draws = 0;
    int flashFrames = 0;
    int spriteClears = 0;
    int scoreScreens = 0;
    int highlight = -2;
    Value shownScores;
    std::vector<AnimatedMove> moves;
};

struct Alert {
    std::string title, message, button;
};

class RecordingHost : public Host {
public:
    RecordingHost();
    ~RecordingHost() override;

    CurrentEvent currentEvent() override { return event; }
    void runAlert(const std::string& t, const std::string& m, const std::string& b) override {
        alerts.push_back({t, m, b});
    }
    bool scoresTimerRunning() const override { return scoresTimer; }
    void startScoresTimer(const Value&) override { scoresTimer = true; }
    void stopScoresTimer() override { scoresTimer = false; }
    void resetProjection() override { ++projectionResets; }
    void showGameWindow() override { gameWindowShown = true; }
    void hideGameWindow() override { gameWindowShown = false; }
    void showMainWindow() override { mainWindowShown = true; }
    void hideMainWindow() override { mainWindowShown = false; }
    void scheduleEngineTimers() override { ++timerSchedules; }
    std::string dataFolder() override { return folder.string(); }

    CurrentEvent event;
    std::vector<Alert> alerts;
    bool scoresTimer = false;
    int projectionResets = 0;
    bool gameWindowShown = false;
    bool mainWindowShown = true;
    int timerSchedules = 0;
    std::filesystem::path folder;  // a fresh temporary folder, removed afterwards
};

// A game of w x h cells with every piece empty (x, y set), one colour each as given
// column by column by colours (0 = empty cell). Piece numbers as set-up gives them.
std::unique_ptr<GameInfo> makeGame(int w, int h, const std::vector<int>& colours = {});

// Sets gameInfo to a game built by makeGame and returns it.
GameInfo& installGame(int w, int h, const std::vector<int>& colours = {});

// Appends an action at the end of an action chain (so it runs after those before it).
GameAction& appendAction(std::shared_ptr<GameAction>& list, std::uint32_t id, std::uint32_t type);
// Pushes a rules event at the head of game's events.
SupportedEvent& addEvent(GameInfo& game, std::uint32_t id, std::uint32_t type);
SupportedUserEvent& addUserEvent(GameInfo& game, std::uint32_t id, std::uint32_t type);

// The colour numbers of a column by column, bottom to top, "." for an empty cell, "|" between
// columns.
std::string boardPicture(const GameInfo& game);

}  // namespace tolvar::testing
