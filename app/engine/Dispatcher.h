// The event tick: raises the game-start event, drains the queue and runs each event's actions.
#pragma once

#include "engine/BoardActions.h"
#include "engine/Completion.h"
#include "engine/EngineContext.h"
#include "engine/RunawayGuard.h"

namespace tolvar {

class Dispatcher {
public:
    explicit Dispatcher(EngineContext& ctx)
        : ctx_(ctx), actions_(ctx), completion_(ctx), bestScores_(ctx) {}

    // One tick of the event timer.
    void processEvents();
    // Queues the game-start event (in place of whatever was pending) when a start is pending.
    void checkForEvents();
    // Runs the actions of event, the entry at the head of the queue.
    void processEvent(const SupportedEvent& event);

private:
    // Ends a game whose events keep queueing one another, naming the one at the head.
    void stopRunawayGame(const SupportedEvent& looping);

    EngineContext& ctx_;
    BoardActions actions_;
    Completion completion_;
    BestScores bestScores_;
    RunawayGuard runaway_;
};

}  // namespace tolvar
