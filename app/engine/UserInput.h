// The player's mouse and keys: the poll of the game window's latest event, the user events the
// rules bind to gestures and keys, the Escape restart and the space bar at the score screen.
#pragma once

#include <cstdint>
#include <optional>

#include "engine/BoardActions.h"
#include "engine/EngineContext.h"

namespace tolvar {

// The key that removes the selection: that of the first remove-selection user event with a key,
// when no user event listed before it takes the same key; 0 when the game has none.
std::int8_t removeSelectionKey(const GameInfo& game);

class UserInput {
public:
    explicit UserInput(EngineContext& ctx) : ctx_(ctx) {}

    // The game window's latest event; the poll reads it.
    void setCurrentEvent(const CurrentEvent& event) { current_ = event; }
    const CurrentEvent& currentEvent() const { return current_; }
    // One poll of the current event; acts only on an event it has not seen yet.
    void checkUserEvents();
    // The poll's two halves: the current event when the poll has not seen it yet (and no start
    // is pending), and acting on a mouse-down, mouse-up or key-down.
    std::optional<CurrentEvent> newEvent();
    // Takes the current event as seen: an event from before the board was shown (the click on
    // Continue or Start, in another window) is never played on it.
    void skipCurrentEvent();
    void handleEvent(const CurrentEvent& event);
    void processUserEvent(const SupportedUserEvent& userEvent);

    const SupportedUserEvent* mouseUpIsUserAction() const;
    const SupportedUserEvent* mouseDownIsUserAction() const { return nullptr; }
    const SupportedUserEvent* charIsUserAction(std::int8_t character) const;
    const SupportedUserEvent* isUserEventSupported(std::uint32_t userEventType) const;

    // Escape: a new board for the same game, score 0, multiplier 1.
    void restartGame();

private:
    // Notes the event as the last one seen; true when it had not been seen yet.
    bool remember(const CurrentEvent& event);

    EngineContext& ctx_;
    CurrentEvent current_;
    // The poll's memory of what it saw last.
    std::int64_t prevEventType_ = 0;
    std::uint16_t prevKeyCode_ = 0;
};

}  // namespace tolvar
