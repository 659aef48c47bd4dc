#include "EngineFakes.h"

#include <atomic>
#include <unistd.h>

namespace tolvar::testing {

RecordingHost::RecordingHost() {
    static std::atomic<int> counter{0};
    folder = std::filesystem::temp_directory_path() /
             ("tolvar-engine-test-" + std::to_string(getpid()) + "-" + std::to_string(counter++));
    std::filesystem::create_directories(folder);
}

RecordingHost::~RecordingHost() {
    std::error_code ec;
    std::filesystem::remove_all(folder, ec);
}

std::unique_ptr<GameInfo> makeGame(int w, int h, const std::vector<int>& colours) {
    auto game = std::make_unique<GameInfo>();
    game->boardWidth = static_cast<std::uint8_t>(w);
    game->boardHeight = static_cast<std::uint8_t>(h);
    game->numColors = 4;
    game->numShapes = 1;
    game->setupRandomFill = 1;
    game->scoreMultiplier = 1;
    game->gameName = "Test";
    game->board.resize(static_cast<std::size_t>(w) * h);
    std::size_t n = 0;
    for (int x = 0; x < w; ++x) {
        for (int y = 0; y < h; ++y, ++n) {
            BoardPiece& p = game->board[n];
            p.x = static_cast<std::uint32_t>(x);
            p.y = static_cast<std::uint32_t>(y);
            const int c = n < colours.size() ? colours[n] : 1;
            p.colorIndex = static_cast<std::uint8_t>(c);
            p.shapeIndex = 1;
            p.pieceID = c == 0 ? 0 : static_cast<std::uint32_t>(n + 1);
        }
    }
    return game;
}

GameInfo& installGame(int w, int h, const std::vector<int>& colours) {
    gameInfo = makeGame(w, h, colours);
    return *gameInfo;
}

GameAction& appendAction(std::shared_ptr<GameAction>& list, std::uint32_t id, std::uint32_t type) {
    auto action = std::make_unique<GameAction>();
    action->actionID = id;
    action->actionType = type;
    GameAction& ref = *action;
    if (!list) {
        list = std::shared_ptr<GameAction>(std::move(action));
        return ref;
    }
    GameAction* tail = list.get();
    while (tail->next) tail = tail->next.get();
    tail->next = std::move(action);
    return ref;
}

SupportedEvent& addEvent(GameInfo& game, std::uint32_t id, std::uint32_t type) {
    auto event = std::make_unique<SupportedEvent>();
    event->eventID = id;
    event->eventType = type;
    event->next = std::move(game.events);
    game.events = std::move(event);
    return *game.events;
}

SupportedUserEvent& addUserEvent(GameInfo& game, std::uint32_t id, std::uint32_t type) {
    auto event = std::make_unique<SupportedUserEvent>();
    event->userEventID = id;
    event->userEventType = type;
    event->next = std::move(game.userEvents);
    game.userEvents = std::move(event);
    return *game.userEvents;
}

std::string boardPicture(const GameInfo& game) {
    std::string text;
    for (int x = 0; x < game.boardWidth; ++x) {
        if (x) text += '|';
        for (int y = 0; y < game.boardHeight; ++y) {
            const BoardPiece& p = game.board[static_cast<std::size_t>(x) * game.boardHeight + y];
            text += p.pieceID == 0 ? std::string(".") : std::to_string(p.colorIndex);
        }
    }
    return text;
}

}  // namespace tolvar::testing
