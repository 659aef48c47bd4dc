// A fixture for the parts of the engine, best scores in a scratch file, and hand-built games.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <functional>

#include "engine/EngineContext.h"
#include "engine/StandInShell.h"
#include "core/BestScoresFile.h"

namespace tolvar::testing {

// Best scores in a file of a fresh folder, removed afterwards, for tests of the file itself.
struct ScratchScores {
    static std::filesystem::path freshFolder() {
        static std::atomic<int> counter{0};
        return std::filesystem::temp_directory_path() /
               ("tolvar-engine-" + std::to_string(getpid()) + "-" + std::to_string(counter++));
    }
    ScratchScores() { std::filesystem::create_directories(folder); }
    ~ScratchScores() { std::error_code ec; std::filesystem::remove_all(folder, ec); }
    ScratchScores(const ScratchScores&) = delete;
    ScratchScores& operator=(const ScratchScores&) = delete;
    std::string path() const { return (folder / "BestScores.dict").string(); }

    std::filesystem::path folder = freshFolder();
    BestScoresFile file{folder.string()};
};

// The parts of the engine on a hand-built game (installGame); best scores in a scratch file.
struct EngineFixture : ::testing::Test {
    GameInfo& installGame(int w, int h, const std::vector<int>& colours = {});
    ScratchScores scores;
    StandInHost host{scores.file};
    StandInView view{host};
    EngineContext ctx{view, host};
    std::unique_ptr<GameInfo>& gameInfo = ctx.gameInfo;
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

inline GameInfo& EngineFixture::installGame(int w, int h, const std::vector<int>& colours) {
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
