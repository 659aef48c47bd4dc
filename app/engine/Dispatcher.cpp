#include "engine/Dispatcher.h"

#include <cstdio>
#include <string>

#include "engine/EventQueue.h"

namespace tolvar {

void Dispatcher::processEvents() {
    if (!ctx_.hasGame()) return;
    checkForEvents();
    GameInfo& game = ctx_.game();
    while (game.eventQueue) {
        if (runaway_.runsAway()) return stopRunawayGame(*game.eventQueue);
        ctx_.view.showMotion(!runaway_.outrunsRealGames());
        ctx_.out.print("processing event %d\n", static_cast<int>(game.eventQueue->eventID));
        processEvent(*game.eventQueue);
        // Entries queued while the actions ran follow in this same tick.
        std::unique_ptr<SupportedEvent> done = std::move(game.eventQueue);
        game.eventQueue = std::move(done->next);
    }
    runaway_.queueEmptied();
    ctx_.view.showMotion(true);
    if (ctx_.gamePaused == 0) ctx_.view.drawBoard(ctx_.game());
}

void Dispatcher::stopRunawayGame(const SupportedEvent& looping) {
    GameInfo& game = ctx_.game();
    const std::string event = "event " + std::to_string(looping.eventID) + " (type " +
                              std::to_string(looping.eventType) + ")";
    EventQueue(game).clearEventQueue();
    runaway_.queueEmptied();
    ctx_.view.showMotion(true);
    ctx_.gamePaused = 1;
    ctx_.out.print("stopped: %s keeps queueing events, %zu in a row\n", event.c_str(),
                RunawayGuard::kMaxChainedEvents);
    ctx_.host.runAlert(" ",
                       "The game \"" + game.gameName + "\" was stopped: its " + event +
                           " keeps queueing events without end. Press the 'esc' key to play again.",
                       "OK");
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
        ctx_.out.print("action %d\n", static_cast<int>(a->actionID));
        if (a->sound) ctx_.view.playSound(*a->sound);
        ctx_.actionSound = a->sound ? &*a->sound : nullptr;
        const std::uint64_t amount = static_cast<std::uint64_t>(static_cast<std::int64_t>(a->amount));
        switch (a->actionType) {
            case kActionAddScore:
                game.score += amount * game.scoreMultiplier;
                ctx_.view.drawBoard(ctx_.game());
                break;
            case kActionAddMultiplier:
                game.scoreMultiplier += amount;
                break;
            case kActionCollapseInDirection:
                ctx_.view.drawBoard(ctx_.game());
                actions_.performActionCollapseInDirection(a->direction);
                ctx_.view.drawBoard(ctx_.game());
                break;
            case kActionSelectColor:
                actions_.performActionSelectColor(*a);
                break;
            case kActionCollapseEmptyRows:
                actions_.performActionCollapseEmptyRows(a->direction);
                ctx_.view.drawBoard(ctx_.game());
                break;
            case kActionCollapseFullRows:
                actions_.performActionCollapseFullRows(a->direction);
                ctx_.view.drawBoard(ctx_.game());
                break;
            case kActionCheckForGameCompletion: {
                // Only the last of several pending pieces-removed events runs the test.
                const SupportedEvent* head = game.eventQueue.get();
                if (!EventQueue::queueContains(head, kEventPiecesRemoved) ||
                    (head && head->eventType == kEventPiecesRemoved &&
                     !EventQueue::queueContains(head->next.get(), kEventPiecesRemoved)))
                    completion_.performActionCheckForGameCompletion();
                break;
            }
            case kActionCheckBestScores:
                bestScores_.performActionCheckBestScores(*a);
                break;
            case kActionShowMessage:
                ctx_.view.drawBoard(ctx_.game());
                ctx_.host.runAlert(" ", a->message.value_or(std::string()), "OK");
                break;
            case kActionAddVariableToScore:
                if (const GameVariable* v = actions_.getVariable(a->variableID))
                    game.score += v->variableValue * game.scoreMultiplier;
                break;
            case kActionGetRemainingPieceCount:
                if (GameVariable* v = actions_.getVariable(a->variableID))
                    actions_.performActionGetRemainingPieceCount(v);
                break;
            case kActionFillSpacesRandomly:
                actions_.performActionFillSpacesRandomly();
                break;
            case kActionResolveMatches:
                actions_.performActionResolveMatches();
                break;
            default:
                if (!isInertActionType(a->actionType)) ctx_.out.print("unknown action specified.\n");
                break;
        }
        ctx_.actionSound = nullptr;
    }
}

}  // namespace tolvar
