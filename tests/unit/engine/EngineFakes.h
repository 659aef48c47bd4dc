// A view and a host that record what the engine asks, a fixture, and hand-built games.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <functional>

#include "engine/EngineContext.h"
#include "engine/Host.h"
#include "engine/View.h"
#include "core/BestScoresFile.h"

namespace tolvar::testing {

struct RecordingView : View {
    void drawBoard(const GameInfo&) override {
        ++draws;
        if (onDraw) onDraw();
    }
    void animatePiece(const GameInfo&, const BoardPiece& p, std::uint32_t x, std::uint32_t y, std::uint32_t toX,
                      std::uint32_t toY) override {  // "piece: from -> to"
        auto text = [](auto... n) { return ((std::to_string(n) + " ") + ...); };
        moves.push_back(text(p.pieceID) + "from " + text(x, y) + "to " + text(toX, toY));
    }
    void displayScores(const Value&, int) override {}
    void clearPieceSprites(int) override { ++spriteClears; }
    void pauseForFlash() override { flashFrames += motionShown; }
    void showMotion(bool shown) override { motionShown = shown; }
    int draws = 0, flashFrames = 0, spriteClears = 0;
    bool motionShown = true;
    std::function<void()> onDraw;  // called at every frame
    std::vector<std::string> moves;
};

struct RecordingHost : Host {
    static std::filesystem::path freshFolder() {
        static std::atomic<int> counter{0};
        return std::filesystem::temp_directory_path() /
               ("tolvar-engine-" + std::to_string(getpid()) + "-" + std::to_string(counter++));
    }
    RecordingHost() { std::filesystem::create_directories(folder); }
    ~RecordingHost() override { std::error_code ec; std::filesystem::remove_all(folder, ec); }
    void runAlert(const std::string& t, const std::string& m, const std::string& b) override {
        alerts.push_back(t + "|" + m + "|" + b);
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
    ScoreStore& scoreStore() override { return scores; }

    std::vector<std::string> alerts;  // title|message|button
    bool scoresTimer = false, gameWindowShown = false, mainWindowShown = true;
    int projectionResets = 0, timerSchedules = 0;
    std::filesystem::path folder = freshFolder();  // removed afterwards
    BestScoresFile scores{folder.string()};
};

struct EngineFixture : ::testing::Test {
    void TearDown() override { gameInfo.reset(); }  // no game left behind
    RecordingView view;
    RecordingHost host;
    EngineContext ctx{view, host};
};

inline std::string stdoutOf(const std::function<void()>& f) {
    ::testing::internal::CaptureStdout();
    f();
    return ::testing::internal::GetCapturedStdout();
}

inline std::string stderrOf(const std::function<void()>& f) {  // drops standard output
    ::testing::internal::CaptureStderr();
    stdoutOf(f);
    return ::testing::internal::GetCapturedStderr();
}

// A game of w x h cells, colours given column by column, bottom to top (0 = an empty cell,
// default 1), pieces numbered from 1 in that order as set-up numbers them.
inline std::unique_ptr<GameInfo> makeGame(int w, int h, const std::vector<int>& colours = {}) {
    auto game = std::make_unique<GameInfo>();
    game->boardWidth = static_cast<std::uint8_t>(w);
    game->boardHeight = static_cast<std::uint8_t>(h);
    game->numColors = 4;
    game->numShapes = game->setupRandomFill = game->scoreMultiplier = 1;
    game->board.resize(static_cast<std::size_t>(w) * h);
    for (std::size_t n = 0; n < game->board.size(); ++n) {
        BoardPiece& p = game->board[n];
        const int c = n < colours.size() ? colours[n] : 1;
        p.x = static_cast<std::uint32_t>(n / h), p.y = static_cast<std::uint32_t>(n % h);
        p.colorIndex = static_cast<std::uint8_t>(c), p.shapeIndex = 1;
        p.pieceID = c == 0 ? 0 : static_cast<std::uint32_t>(n + 1);
    }
    return game;
}

inline GameInfo& installGame(int w, int h, const std::vector<int>& colours = {}) {
    return *(gameInfo = makeGame(w, h, colours));
}

// Appends an action at the end of a chain, so that it runs after those before it.
inline GameAction& appendAction(std::shared_ptr<GameAction>& list, std::uint32_t id,
                                std::uint32_t type) {
    auto a = std::make_unique<GameAction>();
    a->actionID = id, a->actionType = type;
    GameAction& ref = *a;
    if (!list) return list = std::move(a), ref;
    auto* tail = &list->next;
    while (*tail) tail = &(*tail)->next;
    return *(*tail = std::move(a));
}

// Rules events go to the head of their list, as the loader leaves the last one listed.
inline SupportedEvent& addEvent(GameInfo& game, std::uint32_t id, std::uint32_t type) {
    auto e = std::make_unique<SupportedEvent>();
    e->eventID = id, e->eventType = type;
    e->next = std::move(game.events);
    return *(game.events = std::move(e));
}

inline SupportedUserEvent& addUserEvent(GameInfo& game, std::uint32_t id, std::uint32_t type) {
    auto e = std::make_unique<SupportedUserEvent>();
    e->userEventID = id, e->userEventType = type;
    e->next = std::move(game.userEvents);
    return *(game.userEvents = std::move(e));
}

// Colour numbers column by column, bottom to top, "." for an empty cell, "|" between columns.
inline std::string boardPicture(const GameInfo& game) {
    std::string text;
    for (std::size_t n = 0; n < game.board.size(); ++n) {
        if (n && n % game.boardHeight == 0) text += '|';
        text += game.board[n].pieceID ? std::to_string(game.board[n].colorIndex) : ".";
    }
    return text;
}

inline int queued(const GameInfo& game) {
    int n = 0;
    for (auto* e = game.eventQueue.get(); e; e = e->next.get()) ++n;
    return n;
}

inline long selectedCount(const GameInfo& game) {
    return std::count_if(game.board.begin(), game.board.end(), [](auto& p) { return p.selected; });
}

}  // namespace tolvar::testing
