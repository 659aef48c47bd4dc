// A fixture that plays the engine as the desktop does: a game started and its colours set, the
// player's clicks and keys through the host's current event, and ticks.
#pragma once

#include "EngineFakes.h"
#include "engine/BoardLayout.h"
#include "engine/BoardSetup.h"
#include "engine/Engine.h"
#include "rules/BuiltinGames.h"

namespace tolvar::testing {

inline Value with(const Value& rules, std::initializer_list<std::pair<const char*, int>> changes) {
    Dictionary copy = *rules.asDictionary();
    for (const auto& [key, value] : changes) copy.set(key, Value::integer(value));
    return Value::dictionary(std::move(copy));
}

// A game started, its first tick run, and its colours set column by column, bottom to top.
struct PlayerAidsTest : ::testing::Test {
    void start(const Value& game, const std::vector<int>& colours) {
        rules = game;
        engine.seedBoardPicks(5);
        stdoutOf([&] { engine.startGame(&rules, menu), engine.processEvents(); });
        for (std::size_t n = 0; n < colours.size(); ++n) {
            running().board[n].colorIndex = static_cast<std::uint8_t>(colours[n]);
            setPieceColor(running(), running().board[n]);
        }
    }
    CurrentEvent at(std::int64_t type, BoardCell cell) const {
        const BoardLayout l = computeBoardLayout(running());
        CurrentEvent e;
        e.type = type;
        e.x = l.left + (static_cast<float>(cell.column) + 0.5f) * l.w;
        e.y = l.m + (static_cast<float>(cell.row) + 0.5f) * l.h;
        return e;
    }
    std::string input(const CurrentEvent& e) {
        return stdoutOf([&] { engine.takeInput(e); });
    }
    std::string click(BoardCell down, BoardCell up) {
        std::string out = input(at(kEventTypeMouseDown, down));
        return out + input(at(kEventTypeMouseUp, up));
    }
    std::string key(char32_t character, std::uint16_t code = 200) {
        CurrentEvent e;
        e.type = kEventTypeKeyDown;
        e.keyCode = code;
        e.characters = utf8(character);
        std::string out = input(e);
        e.type = kEventTypeKeyUp;
        out += input(e);
        return out;
    }
    std::string tick() { return stdoutOf([&] { engine.processEvents(); }); }
    // The running game of the fixture's engine (a game was started).
    GameInfo& running() { return *engine.game(); }
    const GameInfo& running() const { return *engine.game(); }
    // The board of from's game, and how many of its pieces are selected.
    static std::string picture(const Engine& from) {
        return boardPicture(*from.game()) + " sel " + std::to_string(selectedCount(*from.game()));
    }
    std::string picture() const { return picture(engine); }

    StandInHost host;
    StandInView view{host};
    Engine engine{view, host};
    ActionsMenu menu;
    Value rules;
};

// Vexamor on 3 x 2: columns bottom to top "12", "12", "33".
inline const std::vector<int> kSmall = {1, 2, 1, 2, 3, 3};
inline Value smallVexamor() { return with(createTestGameOne(), {{"BoardWidth", 3}, {"BoardHeight", 2}}); }

}  // namespace tolvar::testing
