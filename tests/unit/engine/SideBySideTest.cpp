// Two games played at the same time in two threads of one process, each with its own engine,
// give exactly the transcripts each gives alone: nothing about a game is shared.
#include <gtest/gtest.h>

#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>

#include "engine/BoardLayout.h"
#include "engine/Engine.h"
#include "engine/StandInShell.h"
#include "rules/BuiltinGames.h"

namespace tolvar {
namespace {

// A player who makes the move the game's hint shows (a swap is dragged, a region is clicked and
// removed with the space bar), and plays again with Escape when the game has ended. Everything the
// game says (diagnostics, alerts, score screens) and the board after every tick goes to one text.
class HintPlayer {
public:
    HintPlayer(const Value& rules, std::uint32_t seed)
        : rules_(rules), stream_(open_memstream(&text_, &size_)), host_(stream_), view_(host_, stream_),
          engine_(view_, host_, GameOutput(stream_)) {
        engine_.seedBoardPicks(seed);
        engine_.startGame(&rules_, menu_);
        engine_.processEvents();
    }
    ~HintPlayer() {
        std::fclose(stream_);
        std::free(text_);
    }
    HintPlayer(const HintPlayer&) = delete;
    HintPlayer& operator=(const HintPlayer&) = delete;

    void step() {
        if (engine_.gamePaused() != 0) {
            key(kKeyCodeEscape, "\x1b");
        } else if (const std::vector<BoardCell> cells = engine_.hint().cells; !cells.empty()) {
            if (swaps()) {
                pointer(kEventTypeMouseDown, cells.front());
                pointer(kEventTypeMouseUp, cells.back());
            } else {
                pointer(kEventTypeMouseDown, cells.front());
                pointer(kEventTypeMouseUp, cells.front());
                key(kSpaceKeyCode, " ");
            }
        }
        engine_.processEvents();
        engine_.printBoardColors();
    }

    std::string transcript() {
        std::fflush(stream_);
        return std::string(text_, size_);
    }

private:
    static constexpr std::uint16_t kSpaceKeyCode = 49;

    bool swaps() const {
        for (const SupportedUserEvent* u = engine_.game()->userEvents.get(); u; u = u->next.get())
            if (u->userEventType == kUserEventSwapAdjacent) return true;
        return false;
    }
    void send(const CurrentEvent& event) { engine_.takeInput(event); }
    void pointer(std::int64_t type, BoardCell cell) {
        const BoardLayout layout = computeBoardLayout(*engine_.game());
        CurrentEvent event;
        event.type = type;
        event.x = layout.left + (static_cast<float>(cell.column) + 0.5f) * layout.w;
        event.y = layout.m + (static_cast<float>(cell.row) + 0.5f) * layout.h;
        send(event);
    }
    void key(std::uint16_t code, const char* characters) {
        CurrentEvent event;
        event.keyCode = code;
        event.characters = characters;
        event.type = kEventTypeKeyDown;
        send(event);
        event.type = kEventTypeKeyUp;
        send(event);
    }

    Value rules_;
    char* text_ = nullptr;
    std::size_t size_ = 0;
    std::FILE* stream_;
    StandInHost host_;
    StandInView view_;
    Engine engine_;
    ActionsMenu menu_;
};

struct Game {
    Value (*rules)();
    std::uint32_t seed;
};
// Enough moves for several boards of each, every one dealt and refilled from its own sequence.
constexpr int kSteps = 120;

std::string playedAlone(const Game& game) {
    HintPlayer player(game.rules(), game.seed);
    for (int i = 0; i < kSteps; ++i) player.step();
    return player.transcript();
}

// The two games' steps alternate strictly, one thread each, so whatever one game left in a
// shared place the other would find there at its next step.
std::pair<std::string, std::string> playedInterleaved(const Game& first, const Game& second) {
    std::mutex mutex;
    std::condition_variable turnChanged;
    int turn = 0;
    std::string transcripts[2];
    const auto play = [&](int me, const Game& game) {
        HintPlayer player(game.rules(), game.seed);
        for (int i = 0; i < kSteps; ++i) {
            std::unique_lock lock(mutex);
            turnChanged.wait(lock, [&] { return turn == me; });
            player.step();
            turn = 1 - me;
            turnChanged.notify_all();
        }
        transcripts[me] = player.transcript();
    };
    std::thread one(play, 0, std::cref(first));
    std::thread other(play, 1, std::cref(second));
    one.join();
    other.join();
    return {transcripts[0], transcripts[1]};
}

TEST(SideBySideTest, TwoGamesInTwoThreadsPlayAsEachPlaysAlone) {
    const Game cases[][2] = {
        {{createTestGameOne, 7}, {createTestGameThree, 12}},  // two rules, two seeds
        {{createTestGameOne, 7}, {createTestGameOne, 8}},     // one rules, two seeds
    };
    for (const auto& [first, second] : cases) {
        const std::string aloneFirst = playedAlone(first), aloneSecond = playedAlone(second);
        ASSERT_NE(aloneFirst, aloneSecond);
        // Long enough to count: games ended and were dealt again.
        EXPECT_NE(aloneFirst.find("scores highlight="), std::string::npos);
        EXPECT_NE(aloneSecond.find("scores highlight="), std::string::npos);
        const auto [together, alongside] = playedInterleaved(first, second);
        EXPECT_EQ(together, aloneFirst);
        EXPECT_EQ(alongside, aloneSecond);
    }
}

}  // namespace
}  // namespace tolvar
