// The pending events of the running game: a first-in first-out chain of copies of rules
// events, and the lookups that fill it.
#pragma once

#include <cstdint>
#include <memory>

#include "rules/GameInfo.h"

namespace tolvar {

class EventQueue {
public:
    explicit EventQueue(GameInfo& game) : game_(game) {}

    // The rules event of that type (the one listed last in the rules), or nullptr.
    SupportedEvent* isEventSupported(std::uint32_t eventType) const;
    // Appends entry at the tail; the queue owns it.
    void addEventToQueue(std::unique_ptr<SupportedEvent> entry);
    // Queues a copy of the rules event of that type, if the game has one. Returns whether it did.
    bool queueCopyOfEvent(std::uint32_t eventType);
    // 1 when first or any entry after it has that type.
    static int queueContains(const SupportedEvent* first, std::uint32_t eventType);
    // Releases every entry without running it.
    void clearEventQueue();

private:
    GameInfo& game_;
};

}  // namespace tolvar
