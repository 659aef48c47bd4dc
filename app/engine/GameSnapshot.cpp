#include "engine/GameSnapshot.h"

#include "engine/EventQueue.h"

namespace tolvar {

namespace {
std::int64_t cellIndex(const GameInfo& game, const BoardPiece* piece) {
    if (!piece || game.board.empty()) return GameSnapshot::kNoCell;
    return piece - game.board.data();
}

BoardPiece* cellAt(GameInfo& game, std::int64_t index) {
    if (index < 0 || static_cast<std::size_t>(index) >= game.board.size()) return nullptr;
    return &game.board[static_cast<std::size_t>(index)];
}
}  // namespace

bool GameSnapshot::sameGameAs(const GameSnapshot& other) const {
    return board == other.board && score == other.score &&
           scoreMultiplier == other.scoreMultiplier && variables == other.variables &&
           pending == other.pending;
}

bool GameSnapshot::sameGameAs(const EngineContext& ctx) const {
    const GameInfo& game = ctx.game();
    if (game.board != board || game.score != score || game.scoreMultiplier != scoreMultiplier) return false;
    auto value = variables.begin();
    for (const GameVariable* v = game.variables.get(); v; v = v->next.get(), ++value)
        if (value == variables.end() || *value != v->variableValue) return false;
    if (value != variables.end()) return false;
    auto entry = pending.begin();
    for (const SupportedEvent* e = game.eventQueue.get(); e; e = e->next.get(), ++entry)
        if (entry == pending.end() || *entry != PendingEvent{e->eventID, e->eventType, e->actions}) return false;
    return entry == pending.end();
}

GameSnapshot takeSnapshot(const EngineContext& ctx) {
    const GameInfo& game = ctx.game();
    GameSnapshot s;
    s.board = game.board;
    s.score = game.score;
    s.scoreMultiplier = game.scoreMultiplier;
    for (const GameVariable* v = game.variables.get(); v; v = v->next.get())
        s.variables.push_back(v->variableValue);
    for (const SupportedEvent* e = game.eventQueue.get(); e; e = e->next.get())
        s.pending.push_back({e->eventID, e->eventType, e->actions});
    s.random = ctx.random.state();
    s.downCell = cellIndex(game, ctx.downPiece);
    s.upCell = cellIndex(game, ctx.upPiece);
    s.gameStarted = ctx.gameStarted;
    s.gamePaused = ctx.gamePaused;
    return s;
}

void restoreSnapshot(EngineContext& ctx, const GameSnapshot& s) {
    GameInfo& game = ctx.game();
    game.board = s.board;
    game.score = s.score;
    game.scoreMultiplier = s.scoreMultiplier;
    auto value = s.variables.begin();
    for (GameVariable* v = game.variables.get(); v && value != s.variables.end(); v = v->next.get())
        v->variableValue = *value++;
    EventQueue queue(game);
    queue.clearEventQueue();
    for (const PendingEvent& p : s.pending) {
        auto entry = std::make_unique<SupportedEvent>();
        entry->eventID = p.eventID;
        entry->eventType = p.eventType;
        entry->actions = p.actions;
        queue.addEventToQueue(std::move(entry));
    }
    ctx.random.restore(s.random);
    ctx.downPiece = cellAt(game, s.downCell);
    ctx.upPiece = cellAt(game, s.upCell);
    ctx.gameStarted = s.gameStarted;
    ctx.gamePaused = s.gamePaused;
}

}  // namespace tolvar
