// The checks of one game: its keys and values, then what the engine would do with them: events
// that never run, inputs that reach nothing, boards that do not fit, loops and games without end.
#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <set>

#include "checker/Located.h"
#include "core/Translate.h"
#include "engine/BoardLayout.h"
#include "engine/Engine.h"
#include "engine/GameLimits.h"
#include "rules/ActionsMenu.h"
#include "rules/RulesDict.h"

namespace tolvar::checker {

namespace {

namespace keys = rulekeys;

// What the engine does with an action type.
enum class ActionEffect { Unknown, Inert, Active };

ActionEffect actionEffect(std::uint32_t type) {
    if (isInertActionType(type)) return ActionEffect::Inert;
    for (ActionType known : kActionTypes)
        if (known == type) return ActionEffect::Active;
    return ActionEffect::Unknown;
}

// "1, 2, 8, 10, 19 to 23 or 26 to 29": the action types the dispatcher runs.
std::string actionTypesText() {
    std::vector<std::string> runs;
    const std::size_t n = std::size(kActionTypes);
    for (std::size_t i = 0; i < n;) {
        std::size_t j = i;
        while (j + 1 < n && kActionTypes[j + 1] == kActionTypes[j] + 1) ++j;
        if (j >= i + 2) {
            // TRANSLATORS: a run of action types, "19 to 23".
            runs.push_back(trf("%s to %s", std::to_string(kActionTypes[i]), std::to_string(kActionTypes[j])));
        } else {
            for (std::size_t k = i; k <= j; ++k) runs.push_back(std::to_string(kActionTypes[k]));
        }
        i = j + 1;
    }
    std::string text;
    for (std::size_t i = 0; i < runs.size(); ++i)
        // TRANSLATORS: "1, 2, 8" and "10 or 19 to 23": the separators of a list of action types.
        text = i == 0 ? runs[i] : i + 1 == runs.size() ? trf("%s or %s", text, runs[i]) : trf("%s, %s", text, runs[i]);
    return text;
}

std::int32_t number(const Located& dict, const char* key, std::int32_t fallback = 0) {
    const Dictionary* d = dict.dict();
    const Value* v = d ? d->find(key) : nullptr;
    return v ? v->intValue().value_or(fallback) : fallback;
}

bool present(const Located& dict, const char* key) { return dict.dict() && dict.dict()->find(key); }

// Where a finding about key of dict goes: the key's value when present, else the dictionary.
Located place(const Located& dict, const char* key) {
    Located at = dict.field(key);
    if (!at.value) {
        at.at = at.keyAt = dict.at;
        at.path = dict.path;
    }
    return at;
}

std::string keyText(std::int8_t c) {
    const int code = static_cast<unsigned char>(c);
    if (code > 32 && code < 127) return "'" + std::string(1, static_cast<char>(c)) + "' (" + std::to_string(code) + ")";
    if (code == 32) return tr("the space bar (32)");
    return std::to_string(code);
}

struct ActionModel {
    Located at;
    std::uint32_t type = 0;
    std::int32_t removePieces = 0;
};

struct EventModel {
    Located at;
    std::uint32_t type = 0;
    std::vector<ActionModel> actions;
};

struct UserEventModel {
    Located at;
    std::uint32_t id = 0;
    std::uint32_t type = 0;
    std::int8_t character = 0;
    std::optional<ActionModel> trigger;
};

class GameChecker {
public:
    GameChecker(const Located& root, Reporter& report, const std::string& folder)
        : root_(root), report_(report), folder_(folder) {}

    void run();

private:
    // Each dictionary entry of the list under key; others are reported.
    template <typename Visit>
    void eachEntry(const char* key, const rulekeys::Level& level, Visit visit);
    ActionModel readAction(const Located& dict);
    void checkSettings();
    void checkEventTypes();
    void checkUserEvents();
    void checkReach();
    void checkCompletion();

    const Located& root_;
    Reporter& report_;
    const std::string& folder_;  // the rules file's, where its sound files are
    std::vector<EventModel> events_;          // in the file's order
    std::vector<UserEventModel> userEvents_;  // in the file's order
    std::vector<std::pair<Located, std::uint32_t>> completions_;
    std::set<std::uint32_t> variables_;
    std::vector<std::pair<Located, std::uint32_t>> variableUses_;
};

template <typename Visit>
void GameChecker::eachEntry(const char* key, const rulekeys::Level& level, Visit visit) {
    const Located list = root_.field(key);
    const Array* entries = list.array();
    if (!entries) return;
    for (std::size_t i = 0; i < entries->size(); ++i) {
        const Located entry = list.item(i);
        if (!entry.dict()) {
            report_.add(Severity::Error, entry, key,
                        trf("an entry is %s, expected a dictionary for %s; every key takes its default",
                            kindName(*entry.value), tr(level.what)));
        }
        checkKeys(entry, level, report_);
        visit(entry);
    }
}

ActionModel GameChecker::readAction(const Located& dict) {
    checkKeys(dict, keys::kActionLevel, report_);
    ActionModel a;
    a.at = dict;
    a.type = static_cast<std::uint32_t>(number(dict, keys::kActionType));
    a.removePieces = number(dict, keys::kRemovePieces);
    const Located typeAt = place(dict, keys::kActionType);
    const std::string typeText = "ActionType " + std::to_string(a.type);
    const std::string expected = actionTypesText();
    switch (actionEffect(a.type)) {
        case ActionEffect::Unknown:
            report_.add(Severity::Error, typeAt, keys::kActionType,
                        present(dict, keys::kActionType)
                            ? trf("%s is not an action the engine knows: it prints \"unknown action specified.\" and "
                                  "does nothing; expected %s", typeText, expected)
                            : trf("no ActionType is not an action the engine knows: it prints \"unknown action "
                                  "specified.\" and does nothing; expected %s", expected));
            break;
        case ActionEffect::Inert:
            report_.add(Severity::Warning, typeAt, keys::kActionType,
                        trf("%s does nothing; expected %s", typeText, expected));
            break;
        case ActionEffect::Active:
            break;
    }
    const std::int32_t direction = number(dict, keys::kDirection);
    const bool moves = (a.type == kActionCollapseInDirection || a.type == kActionCollapseFullRows) ? direction == kDirectionDown
                       : a.type == kActionCollapseEmptyRows ? (direction == kDirectionDown || direction == kDirectionLeft)
                                      : true;
    if (!moves)
        report_.add(Severity::Warning, place(dict, keys::kDirection), keys::kDirection,
                    a.type == kActionCollapseEmptyRows
                        ? trf("Direction %s moves nothing for %s; expected 2 (down) or 3 (left)",
                              std::to_string(direction), typeText)
                        : trf("Direction %s moves nothing for %s; expected 2 (down)", std::to_string(direction), typeText));
    if (a.type == kActionShowMessage && !(dict.dict() && dict.dict()->find(keys::kMessage) &&
                          dict.dict()->find(keys::kMessage)->isString()))
        report_.add(Severity::Warning, dict, keys::kMessage, trf("%s shows an empty alert; expected a Message", typeText));
    if (const Located sound = dict.field(keys::kSound); sound.value && sound.value->isString())
        if (const std::string problem = soundProblem(*sound.value->asString(), folder_); !problem.empty())
            report_.add(Severity::Warning, sound, keys::kSound, trf("%s; the action plays no sound", problem));
    if (a.type == kActionAddVariableToScore || a.type == kActionGetRemainingPieceCount)
        variableUses_.emplace_back(place(dict, keys::kVariableID),
                                   static_cast<std::uint32_t>(number(dict, keys::kVariableID)));
    return a;
}

void GameChecker::checkSettings() {
    GameInfo info;
    readGameSettings(*root_.dict(), info);
    if (const std::string reason = unplayableReason(info); !reason.empty()) {
        // The reason names the rule first, between quotes.
        const std::size_t open = reason.find('"'), close = reason.find('"', open + 1);
        const std::string key = reason.substr(open + 1, close - open - 1);
        report_.add(Severity::Error, place(root_, key.c_str()), key, trf("the game cannot be played: %s", reason));
        return;
    }
    if (info.squareShapes) {
        const BoardLayout layout = computeBoardLayout(info);
        const float span = layout.w * static_cast<float>(info.boardWidth);
        if (span > winWidth) {
            const unsigned fit = widestSquareBoard(info);
            report_.add(Severity::Warning, place(root_, keys::kBoardWidth), keys::kBoardWidth,
                        trf("%s square columns of %s rows are %s pixels wide, and the window %s: the board runs "
                            "off the window; expected at most %s columns",
                            std::to_string(info.boardWidth), std::to_string(info.boardHeight),
                            std::to_string(static_cast<int>(span)), std::to_string(static_cast<int>(winWidth)),
                            std::to_string(fit)));
        }
    }
    if (const unsigned drawn = colorRange(info).most; info.numColors > drawn)
        report_.add(Severity::Warning, place(root_, keys::kNumColors), keys::kNumColors,
                    std::to_string(info.numColors) + " colours, but the board draws only " + std::to_string(drawn) +
                        ": colours past the " + std::to_string(drawn) + "th are drawn black; expected at most " +
                        std::to_string(drawn));
}

void GameChecker::checkEventTypes() {
    for (std::size_t i = 0; i < events_.size(); ++i) {
        const EventModel& e = events_[i];
        const Located typeAt = place(e.at, keys::kEventType);
        if (e.type != kEventGameStarted && e.type != kEventNoMovesLeft && e.type != kEventPiecesRemoved) {
            report_.add(Severity::Error, typeAt, keys::kEventType,
                        trf("%s is not an event the engine raises, so this event never runs; expected 8 (the game "
                            "has started), 11 (no move is left) or 12 (pieces were removed)",
                            present(e.at, keys::kEventType) ? "EventType " + std::to_string(e.type)
                                                            : std::string(tr("no EventType"))));
            continue;
        }
        // Lists run last to first: the last event of a type is the one found.
        for (std::size_t j = i + 1; j < events_.size(); ++j)
            if (events_[j].type == e.type) {
                report_.add(Severity::Warning, typeAt, keys::kEventType,
                            trf("another event of type %s listed after this one (EventID %s) runs in its place, so "
                                "this one never runs; expected one event per type",
                                std::to_string(e.type), std::to_string(number(events_[j].at, keys::kEventID))));
                break;
            }
    }
}

void GameChecker::checkUserEvents() {
    for (std::size_t i = 0; i < userEvents_.size(); ++i) {
        const UserEventModel& u = userEvents_[i];
        const Located typeAt = place(u.at, keys::kUserEventType);
        // The engine knows the user-event types that title a menu item.
        if (!ActionsMenu::titleForUserEventType(u.type))
            report_.add(Severity::Error, typeAt, keys::kUserEventType,
                        trf("%s is not a user event the engine knows; expected 1 to 10",
                            present(u.at, keys::kUserEventType) ? "UserEventType " + std::to_string(u.type)
                                                                : std::string(tr("no UserEventType"))));
        const bool mouse = u.type == kUserEventSwapAdjacent || u.type == kUserEventSelectColorRegion;
        // The mouse goes to the last click or drag user event of the list, a key to the last one bound to it.
        const UserEventModel* mouseTaker = nullptr;
        const UserEventModel* keyTaker = nullptr;
        for (std::size_t j = i + 1; j < userEvents_.size(); ++j) {
            const UserEventModel& later = userEvents_[j];
            if (later.type == kUserEventSwapAdjacent || later.type == kUserEventSelectColorRegion) mouseTaker = &later;
            if (u.character != 0 && later.character == u.character) keyTaker = &later;
        }
        if (keyTaker)
            report_.add(Severity::Warning, place(u.at, keys::kUserEventCharacter), keys::kUserEventCharacter,
                        trf("the key %s is also bound to the user event listed after this one (UserEventID %s), "
                            "which takes it; expected one user event per key",
                            keyText(u.character), std::to_string(keyTaker->id)));
        const bool byKey = u.character != 0 && !keyTaker;
        const bool byMouse = mouse && !mouseTaker;
        if (byKey || byMouse || keyTaker) continue;
        const std::string why =
            mouse ? trf("the mouse goes to the click or drag user event listed after it (UserEventID %s)",
                        std::to_string(mouseTaker->id))
                  : std::string(tr("only user events of types 3 and 4 take the mouse"));
        report_.add(Severity::Warning, place(u.at, keys::kUserEventCharacter), keys::kUserEventCharacter,
                    trf("no input reaches this user event: %s, and it has no key; expected a UserEventCharacter", why));
    }
}

void GameChecker::checkReach() {
    // The event of each type that runs: the last of that type in the list.
    std::map<std::uint32_t, const EventModel*> runs;
    for (const EventModel& e : events_) runs[e.type] = &e;
    bool swapRemoves = false;
    for (const UserEventModel& u : userEvents_)
        if (u.type == kUserEventSwapAdjacent && u.trigger && u.trigger->removePieces != 0) swapRemoves = true;
    // What the actions queue when they run.
    std::set<std::uint32_t> queued;
    auto effects = [&](const ActionModel& a) {
        if (a.type == kActionCheckForGameCompletion) queued.insert(kEventNoMovesLeft);
        if ((a.type == kActionSelectColor && a.removePieces != 0) || (a.type == kActionResolveMatches && swapRemoves))
            queued.insert(kEventPiecesRemoved);
    };
    queued.insert(kEventGameStarted);
    for (const UserEventModel& u : userEvents_) {
        if (u.trigger) effects(*u.trigger);
        if (u.type == kUserEventRemoveSelection) queued.insert(kEventPiecesRemoved);
    }
    for (std::size_t before = 0; before != queued.size();) {
        before = queued.size();
        for (std::uint32_t type : std::set<std::uint32_t>(queued))
            if (auto it = runs.find(type); it != runs.end())
                for (const ActionModel& a : it->second->actions) effects(a);
    }
    for (const auto& [type, event] : runs) {
        if (queued.count(type) || (type != kEventNoMovesLeft && type != kEventPiecesRemoved)) continue;
        const char* why =
            type == kEventNoMovesLeft
                ? tr("no event or user event that runs has action 21 (test whether the game is over), so the game "
                     "never ends; expected action 21 in the event of type 8 or 12")
                : tr("no input or action removes pieces; expected a user event of type 9, an action 10 with "
                     "RemovePieces, or an action 29 in a game whose swap removes");
        report_.add(Severity::Warning, place(event->at, keys::kEventType), keys::kEventType,
                    trf("nothing ever queues this event of type %s and its %s actions: %s", std::to_string(type),
                        std::to_string(event->actions.size()), why));
    }
    if (!runs.count(kEventNoMovesLeft))
        report_.add(Severity::Warning, place(root_, keys::kSupportedEvents), keys::kSupportedEvents,
                    tr("the game never ends: there is no event of type 11 (no move is left); expected one that "
                       "enters the score (action 22)"));
    // The completion test inside the no-move-left event finds no move again and queues it again.
    if (auto it = runs.find(kEventNoMovesLeft); it != runs.end() && queued.count(kEventNoMovesLeft)) {
        const auto& actions = it->second->actions;
        const bool refills = std::any_of(actions.begin(), actions.end(),
                                         [](const ActionModel& a) { return a.type == kActionFillSpacesRandomly; });
        for (const ActionModel& a : actions)
            if (a.type == kActionCheckForGameCompletion && !refills)
                report_.add(Severity::Error, place(a.at, keys::kActionType), keys::kActionType,
                            tr("action 21 in the event of type 11 queues that event again while no move is left, "
                               "so the events queue each other without end; expected action 21 only in events of "
                               "type 8 or 12"));
    }
}

void GameChecker::checkCompletion() {
    bool judged = false;
    for (const auto& [at, type] : completions_) {
        if (type == kCompletionNoMovesLeft) judged = true;
        else
            report_.add(Severity::Warning, place(at, keys::kCompletionType), keys::kCompletionType,
                        trf("CompletionType %s is skipped by the completion test; expected 7 (no move is left)",
                            std::to_string(type)));
    }
    bool tests = false;
    for (const EventModel& e : events_)
        for (const ActionModel& a : e.actions) tests = tests || a.type == kActionCheckForGameCompletion;
    if (tests && !judged)
        report_.add(Severity::Warning, place(root_, keys::kCompletionCriteria), keys::kCompletionCriteria,
                    tr("no criterion of type 7, so the first completion test (action 21) ends the game; expected a "
                       "CompletionType 7"));
    for (const auto& [at, id] : variableUses_)
        if (!variables_.count(id))
            report_.add(Severity::Warning, at, keys::kVariableID,
                        trf("VariableID %s names no variable of VariableList, so the action does nothing; expected "
                            "the VariableID of a variable", std::to_string(id)));
}

void GameChecker::run() {
    checkKeys(root_, keys::kGameLevel, report_);
    checkSettings();
    eachEntry(keys::kSupportedEvents, keys::kEventLevel, [&](const Located& entry) {
        EventModel e;
        e.at = entry;
        e.type = static_cast<std::uint32_t>(number(entry, keys::kEventType));
        const Located list = entry.field(keys::kActionList);
        if (const Array* actions = list.array())
            for (std::size_t i = 0; i < actions->size(); ++i) {
                const Located action = list.item(i);
                if (!action.dict())
                    report_.add(Severity::Error, action, keys::kActionList,
                                trf("an entry is %s, expected a dictionary for %s; every key takes its default",
                                    kindName(*action.value), tr(keys::kActionLevel.what)));
                e.actions.push_back(readAction(action));
            }
        events_.push_back(std::move(e));
    });
    eachEntry(keys::kSupportedUserEvents, keys::kUserEventLevel, [&](const Located& entry) {
        UserEventModel u;
        u.at = entry;
        u.id = static_cast<std::uint32_t>(number(entry, keys::kUserEventID));
        u.type = static_cast<std::uint32_t>(number(entry, keys::kUserEventType));
        u.character = static_cast<std::int8_t>(static_cast<std::uint32_t>(number(entry, keys::kUserEventCharacter)) & 0xFFu);
        if (present(entry, keys::kUserEventTriggerAction)) u.trigger = readAction(entry.field(keys::kUserEventTriggerAction));
        userEvents_.push_back(std::move(u));
    });
    eachEntry(keys::kCompletionCriteria, keys::kCompletionLevel, [&](const Located& entry) {
        completions_.emplace_back(entry, static_cast<std::uint32_t>(number(entry, keys::kCompletionType)));
    });
    eachEntry(keys::kVariableList, keys::kVariableLevel, [&](const Located& entry) {
        variables_.insert(static_cast<std::uint32_t>(number(entry, keys::kVariableID)));
    });
    checkEventTypes();
    checkUserEvents();
    checkReach();
    checkCompletion();
}

}  // namespace

std::vector<Problem> checkGame(const std::string& title, const Value& rules, const XmlPositions* positions,
                               XmlPositions::Node node, const std::string& folder) {
    std::vector<Problem> problems;
    Reporter report(title, problems);
    Located root;
    root.value = &rules;
    const bool known = positions && node != XmlPositions::kNone;
    root.positions = known ? positions : nullptr;
    root.node = known ? node : XmlPositions::kNone;
    root.path = title;
    root.at = root.keyAt = known ? positions->at(node) : TextPosition{};
    if (!rules.isDictionary()) {
        report.add(Severity::Error, root, "",
                   trf("the game is %s, expected a dictionary of rules; it plays with every default", kindName(rules)));
        return problems;
    }
    GameChecker(root, report, folder).run();
    std::stable_sort(problems.begin(), problems.end(), [](const Problem& a, const Problem& b) {
        return a.at.line != b.at.line ? a.at.line < b.at.line : a.at.column < b.at.column;
    });
    return problems;
}

}  // namespace tolvar::checker
