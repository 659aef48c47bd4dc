#include "rules/BuiltinGames.h"

#include <cstdio>
#include <initializer_list>

#include "core/PlistFile.h"

namespace tolvar {

namespace {

using Entry = std::pair<const char*, Value>;

Value dict(std::initializer_list<Entry> entries) {
    Dictionary d;
    for (const auto& [key, value] : entries) d.set(key, value);
    return Value::dictionary(std::move(d));
}

Value array(std::initializer_list<Value> items) { return Value::array(Array(items)); }

Value num(std::int64_t n) { return Value::integer(n); }

Value text(const char* s) { return Value::string(s); }

const char* const kNoMoreMoves =
    "No more moves!  Press the 'esc' key to play again after clicking 'OK'.";

// Every game starts by letting the pieces settle and showing the score.
Value startEvent() {
    return dict({{"EventID", num(1)},
                 {"EventType", num(8)},
                 {"ActionList", array({dict({{"ActionType", num(8)}, {"Direction", num(2)}, {"ActionID", num(1)}}),
                                       dict({{"ActionType", num(1)}, {"Amount", num(0)}, {"ActionID", num(2)}})})}});
}

// Removal in the clearing games: pieces fall, empty columns close up, completion is tested and
// each removal costs a point (the list runs from its last entry to its first).
Value clearingRemovalEvent() {
    return dict({{"EventID", num(2)},
                 {"EventType", num(12)},
                 {"ActionList", array({dict({{"ActionType", num(1)}, {"Amount", num(1)}, {"ActionID", num(6)}}),
                                       dict({{"ActionType", num(21)}, {"ActionID", num(4)}}),
                                       dict({{"ActionType", num(19)}, {"Direction", num(3)}, {"ActionID", num(7)}}),
                                       dict({{"ActionType", num(8)}, {"Direction", num(2)}, {"ActionID", num(3)}})})}});
}

// End of a clearing game: the multiplier rises to 10, the remaining pieces are counted and
// charged, the player is told, and the best scores (lower is better) are checked.
Value clearingNoMovesEvent() {
    return dict({{"EventID", num(3)},
                 {"EventType", num(11)},
                 {"ActionList",
                  array({dict({{"ActionType", num(22)}, {"ActionID", num(11)}, {"LowerIsBetter", num(1)}}),
                         dict({{"ActionType", num(23)}, {"ActionID", num(5)}, {"Message", text(kNoMoreMoves)}}),
                         dict({{"ActionType", num(26)}, {"ActionID", num(9)}, {"VariableID", num(1)}}),
                         dict({{"ActionType", num(27)}, {"ActionID", num(8)}, {"VariableID", num(1)}}),
                         dict({{"ActionType", num(2)}, {"ActionID", num(10)}, {"Amount", num(9)}})})}});
}

Value completionCriteria() {
    return array({dict({{"CompletionID", num(1)}, {"CompletionType", num(7)}})});
}

Value variableList() { return array({dict({{"VariableID", num(1)}})}); }

Value swapUserEvents(std::int64_t minPieces, std::int64_t criteria) {
    return array({dict({{"UserEventID", num(1)},
                        {"UserEventType", num(3)},
                        {"UserEventTriggerAction", dict({{"ActionID", num(11)},
                                                         {"ActionType", num(10)},
                                                         {"MinPieces", num(minPieces)},
                                                         {"ActionCriteria", num(criteria)},
                                                         {"RemovePieces", num(1)}})}})});
}

}  // namespace

Value createTestGameOne() {
    return dict({
        {"GameName", text("Vexamor")},
        {"GameDescription",
         text("Select any number of color regions and press the space bar to delete them.  The board "
              "will collapse down and then empty columns will be removed.  The objective is to end up "
              "with a completely cleared board.  Each deletion costs you one point and remaining pieces "
              "cost you 10 points each.  Lower scores are therefore better.")},
        {"BoardWidth", num(8)},
        {"BoardHeight", num(8)},
        {"NumShapes", num(1)},
        {"NumColors", num(4)},
        {"SetupRandomFill", num(1)},
        {"SquareShapes", num(1)},
        {"ColorsMatchShapes", num(0)},
        {"HolesAllowed", num(0)},
        {"HasLauncher", num(0)},
        {"SupportedEvents", array({startEvent(), clearingRemovalEvent(), clearingNoMovesEvent()})},
        {"SupportedUserEvents",
         array({dict({{"UserEventID", num(1)}, {"UserEventType", num(9)}, {"UserEventCharacter", num(32)}}),
                dict({{"UserEventID", num(2)}, {"UserEventType", num(4)}, {"MinimumPieces", num(2)}})})},
        {"CompletionCriteria", completionCriteria()},
        {"VariableList", variableList()},
    });
}

Value createTestGameTwo() {
    return dict({
        {"GameName", text("Trindle")},
        {"GameDescription",
         text("Swap any two different vertically or horizontally adjacent colors with a click, hold and "
              "drag to make a group of two or more of the same color.  The matched color sets will be "
              "removed from the board.  The objective is to clear the board.  Each deletion costs you one "
              "point and remaining pieces cost you 10 points each.  Lower scores are therefore better.")},
        {"BoardWidth", num(12)},
        {"BoardHeight", num(12)},
        {"NumShapes", num(1)},
        {"NumColors", num(3)},
        {"SetupRandomFill", num(1)},
        {"SquareShapes", num(1)},
        {"ColorsMatchShapes", num(0)},
        {"HolesAllowed", num(0)},
        {"HasLauncher", num(0)},
        {"SupportedEvents", array({startEvent(), clearingRemovalEvent(), clearingNoMovesEvent()})},
        {"SupportedUserEvents", swapUserEvents(2, 19)},
        {"CompletionCriteria", completionCriteria()},
        {"VariableList", variableList()},
    });
}

Value createTestGameThree() {
    // Lines of three or more vanish, the holes refill at random and each clear earns a point.
    Value removal = dict(
        {{"EventID", num(2)},
         {"EventType", num(12)},
         {"ActionList", array({dict({{"ActionType", num(1)}, {"Amount", num(1)}, {"ActionID", num(6)}}),
                               dict({{"ActionType", num(21)}, {"ActionID", num(4)}}),
                               dict({{"ActionType", num(29)}, {"ActionID", num(12)}}),
                               dict({{"ActionType", num(28)}, {"ActionID", num(7)}}),
                               dict({{"ActionType", num(8)}, {"Direction", num(2)}, {"ActionID", num(3)}})})}});
    Value noMoves = dict(
        {{"EventID", num(3)},
         {"EventType", num(11)},
         {"ActionList", array({dict({{"ActionType", num(22)}, {"ActionID", num(11)}}),
                               dict({{"ActionType", num(23)}, {"ActionID", num(5)}, {"Message", text(kNoMoreMoves)}})})}});
    return dict({
        {"GameName", text("Glimmet")},
        {"GameDescription",
         text("Swap any two different vertically or horizontally adjacent colors with a click, hold and "
              "drag to make a line of three or more of the same color.  The matched color sets will be "
              "removed from the board and the board filled randomly.  The objective is to continue as "
              "long as possible.  Each clear is worth one point.  Higher scores are therefore better.")},
        {"BoardWidth", num(8)},
        {"BoardHeight", num(8)},
        {"NumShapes", num(1)},
        {"NumColors", num(8)},
        {"SetupRandomFill", num(1)},
        {"SetupMaxLinearColors", num(2)},
        {"SquareShapes", num(1)},
        {"ColorsMatchShapes", num(0)},
        {"HolesAllowed", num(0)},
        {"HasLauncher", num(0)},
        {"SupportedEvents", array({startEvent(), removal, noMoves})},
        {"SupportedUserEvents", swapUserEvents(3, 83)},
        {"CompletionCriteria", completionCriteria()},
        {"VariableList", variableList()},
    });
}

Value createTestRulesDict(const std::string& rulesPath, std::string& notWritten) {
    Dictionary all;
    all.set("Vexamor", createTestGameOne());
    all.set("Trindle", createTestGameTwo());
    all.set("Glimmet", createTestGameThree());
    Value rules = Value::dictionary(std::move(all));
    // The games are played from memory either way.
    notWritten.clear();
    if (const auto error = writePropertyListFile(rulesPath, rules)) {
        notWritten = "cannot be written (" + error->reason + "); the built-in games are played without it";
        std::fprintf(stderr, "%s: %s\n", rulesPath.c_str(), notWritten.c_str());
    }
    return rules;
}

}  // namespace tolvar
