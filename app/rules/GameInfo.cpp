#include "rules/GameInfo.h"

namespace tolvar {

namespace {
// Releases a chain of records one by one, so that a long chain never recurses.
template <typename Record>
void unlinkChain(std::unique_ptr<Record>& next) {
    std::unique_ptr<Record> rest = std::move(next);
    while (rest) rest = std::move(rest->next);
}
}  // namespace

GameAction::~GameAction() { unlinkChain(next); }
SupportedEvent::~SupportedEvent() { unlinkChain(next); }
SupportedUserEvent::~SupportedUserEvent() { unlinkChain(next); }
CompletionCriterion::~CompletionCriterion() { unlinkChain(next); }
GameVariable::~GameVariable() { unlinkChain(next); }

std::unique_ptr<SupportedEvent> SupportedEvent::copyForQueue() const {
    auto entry = std::make_unique<SupportedEvent>();
    entry->eventID = eventID;
    entry->eventType = eventType;
    entry->actions = actions;
    return entry;
}

}  // namespace tolvar
