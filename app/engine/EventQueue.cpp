#include "engine/EventQueue.h"

namespace tolvar {

SupportedEvent* EventQueue::isEventSupported(std::uint32_t eventType) const {
    for (SupportedEvent* event = game_.events.get(); event; event = event->next.get())
        if (event->eventType == eventType) return event;
    return nullptr;
}

void EventQueue::addEventToQueue(std::unique_ptr<SupportedEvent> entry) {
    entry->next.reset();
    std::unique_ptr<SupportedEvent>* tail = &game_.eventQueue;
    while (*tail) tail = &(*tail)->next;
    *tail = std::move(entry);
}

bool EventQueue::queueCopyOfEvent(std::uint32_t eventType) {
    const SupportedEvent* event = isEventSupported(eventType);
    if (!event) return false;
    addEventToQueue(event->copyForQueue());
    return true;
}

int EventQueue::queueContains(const SupportedEvent* first, std::uint32_t eventType) {
    for (const SupportedEvent* entry = first; entry; entry = entry->next.get())
        if (entry->eventType == eventType) return 1;
    return 0;
}

void EventQueue::clearEventQueue() { game_.eventQueue.reset(); }

}  // namespace tolvar
