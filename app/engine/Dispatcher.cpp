#include "engine/Dispatcher.h"

#include <cstdio>

#include "engine/EventQueue.h"

namespace tolvar {

void Dispatcher::processEvents() {
    if (!ctx_.hasGame()) return;
    checkForEvents();
    GameInfo& game = ctx_.game();
    while (game.eventQueue) {
        std::printf("processing event %d\n", static_cast<int>(game.eventQueue->eventID));
        processEvent(*game.eventQueue);
        // Entries queued while the actions ran follow in this same tick.
        std::unique_ptr<SupportedEvent> done = std::move(game.eventQueue);
        game.eventQueue = std::move(done->next);
    }
    if (ctx_.gamePaused == 0) ctx_.view.drawBoard();
}

void Dispatcher::checkForEvents() {
    if (ctx_.gameStarted == 0) return;
    GameInfo& game = ctx_.game();
    if (const SupportedEvent* start = EventQueue(game).isEventSupported(kEventGameStarted)) {
        // Whatever was pending is released unrun.
        game.eventQueue = start->copyForQueue();
    }
    ctx_.gameStarted = 0;
}

void Dispatcher::processEvent(const SupportedEvent& event) {
    GameInfo& game = ctx_.game();
    // The list is shared with the rules; hold it for the whole run.
    const std::shared_ptr<GameAction> actions = event.actions;
    for (const GameAction* a = actions.get(); a; a = a->next.get()) {
        std::printf("action %d\n", static_cast<int>(a->actionID));
        const std::uint64_t amount = static_cast<std::uint64_t>(static_cast<std::int64_t>(a->amount));
        switch (a->actionType) {
            case 1:
                game.score += amount * game.scoreMultiplier;
                ctx_.view.drawBoard();
                break;
            case 2:
                game.scoreMultiplier += amount;
                break;
            case 3: case 4: case 5: case 6: case 7: case 9:
            case 11: case 12: case 13: case 14: case 15: case 16: case 17: case 18:
                break;
            case 8:
                ctx_.view.drawBoard();
                actions_.performActionCollapseInDirection(a->direction);
                ctx_.view.drawBoard();
                break;
            case 10:
                actions_.performActionSelectColor(*a);
                break;
            case 19:
                actions_.performActionCollapseEmptyRows(a->direction);
                ctx_.view.drawBoard();
                break;
            case 20:
                actions_.performActionCollapseFullRows(a->direction);
                ctx_.view.drawBoard();
                break;
            case 21: {
                // Only the last of several pending pieces-removed events runs the test.
                const SupportedEvent* head = game.eventQueue.get();
                if (!EventQueue::queueContains(head, kEventPiecesRemoved) ||
                    (head && head->eventType == kEventPiecesRemoved &&
                     !EventQueue::queueContains(head->next.get(), kEventPiecesRemoved)))
                    completion_.performActionCheckForGameCompletion();
                break;
            }
            case 22:
                bestScores_.performActionCheckBestScores(*a);
                break;
            case 23:
                ctx_.view.drawBoard();
                ctx_.host.runAlert(" ", a->message.value_or(std::string()), "OK");
                break;
            case 26:
                if (const GameVariable* v = actions_.getVariable(a->variableID))
                    game.score += v->variableValue * game.scoreMultiplier;
                break;
            case 27:
                if (GameVariable* v = actions_.getVariable(a->variableID))
                    actions_.performActionGetRemainingPieceCount(v);
                break;
            case 28:
                actions_.performActionFillSpacesRandomly();
                break;
            case 29:
                actions_.performActionResolveMatches();
                break;
            default:
                std::printf("unknown action specified.\n");
                break;
        }
    }
}

}  // namespace tolvar
