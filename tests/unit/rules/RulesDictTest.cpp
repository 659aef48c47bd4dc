// A rules dictionary becomes the game's records: defaults, number reading, list order,
// diagnostic lines and the "Actions" menu binding.
#include <gtest/gtest.h>

#include <vector>

#include "rules/RulesDict.h"

using namespace tolvar;

namespace {

using Entry = std::pair<const char*, Value>;

Value dict(std::initializer_list<Entry> entries) {
    Dictionary d;
    for (const auto& [key, value] : entries) d.set(key, value);
    return Value::dictionary(std::move(d));
}

Value num(std::int64_t n) { return Value::integer(n); }

std::unique_ptr<GameInfo> build(const Value& rules, ActionsMenu& menu) {
    return createStructsFromRulesDict(&rules, menu);
}

std::unique_ptr<GameInfo> build(const Value& rules) {
    ActionsMenu menu;
    return build(rules, menu);
}

template <typename Record, typename Field>
std::vector<Field> collect(const Record* head, Field Record::*field) {
    std::vector<Field> out;
    for (const Record* r = head; r; r = r->next.get()) out.push_back(r->*field);
    return out;
}

}  // namespace

TEST(RulesDefaults, AnEmptyDictionaryGivesEveryDefault) {
    auto info = build(Value::dictionary());
    ASSERT_TRUE(info);
    EXPECT_EQ(info->boardWidth, 5);
    EXPECT_EQ(info->boardHeight, 5);
    EXPECT_EQ(info->hasLauncher, 0);
    EXPECT_EQ(info->scoreMultiplier, 1u);
    EXPECT_EQ(info->numShapes, 1);
    EXPECT_EQ(info->numColors, 4);
    EXPECT_EQ(info->setupRandomFill, 0);
    EXPECT_EQ(info->setupMaxLinearColors, 0);
    EXPECT_EQ(info->setupMaxLinearShapes, 0);
    EXPECT_EQ(info->squareShapes, 0);
    EXPECT_EQ(info->colorsMatchShapes, 0);
    EXPECT_EQ(info->holesAllowed, 0);
    EXPECT_EQ(info->gameName, "Unknown");
    EXPECT_EQ(info->descriptionText, "Unknown");
    EXPECT_EQ(info->score, 0u);
    EXPECT_FALSE(info->hasBoard());
    EXPECT_EQ(info->events, nullptr);
    EXPECT_EQ(info->eventQueue, nullptr);
    EXPECT_EQ(info->userEvents, nullptr);
    EXPECT_EQ(info->completionCriteria, nullptr);
    EXPECT_EQ(info->variables, nullptr);
}

TEST(RulesDefaults, NoDictionaryGivesNoGame) {
    ActionsMenu menu;
    EXPECT_EQ(createStructsFromRulesDict(nullptr, menu), nullptr);
    const Value notADict = Value::array({Value::dictionary()});
    EXPECT_EQ(createStructsFromRulesDict(&notADict, menu), nullptr);
}

TEST(RulesNumbers, EachKeyIsReadWithTheNumberRuleAndStoredInItsWidth) {
    auto info = build(dict({
        {"BoardWidth", num(0x100000105LL)},           // low 32 bits 0x105, low 8 bits 5
        {"BoardHeight", Value::string("  -12abc")},   // -12 kept as 244
        {"NumColors", Value::real(3.7)},
        {"NumShapes", Value::boolean(true)},
        {"HasLauncher", Value::array()},              // no number: default
        {"SetupMaxLinearColors", Value::string("99999999999")},
        {"ScoreMultiplier", num(-1)},
        {"GameName", Value::string("Mine")},
        {"GameDescription", Value::string("Play it")},
    }));
    ASSERT_TRUE(info);
    EXPECT_EQ(info->boardWidth, 5);
    EXPECT_EQ(info->boardHeight, 244);
    EXPECT_EQ(info->numColors, 3);
    EXPECT_EQ(info->numShapes, 1);
    EXPECT_EQ(info->hasLauncher, 0);
    EXPECT_EQ(info->setupMaxLinearColors, 0xff);  // 2147483647 keeps its low 8 bits
    EXPECT_EQ(info->scoreMultiplier, ~std::uint64_t{0});
    EXPECT_EQ(info->gameName, "Mine");
    EXPECT_EQ(info->descriptionText, "Play it");
}

TEST(RulesNumbers, LargeMultipliersAreSignExtendedFrom32Bits) {
    EXPECT_EQ(build(dict({{"ScoreMultiplier", Value::string("99999999999")}}))->scoreMultiplier, 2147483647u);
    EXPECT_EQ(build(dict({{"ScoreMultiplier", num(0x80000000LL)}}))->scoreMultiplier, 0xFFFFFFFF80000000ull);
    EXPECT_EQ(build(dict({{"ScoreMultiplier", Value::dictionary()}}))->scoreMultiplier, 1u);
}

TEST(RulesStrings, NamesDescriptionsAndMessagesOfAnotherKindCountAsAbsent) {
    auto info = build(dict({
        {"GameName", num(12)},
        {"GameDescription", Value::array()},
        {"SupportedEvents",
         Value::array({dict({{"ActionList", Value::array({dict({{"Message", num(3)}}),
                                                           dict({{"Message", Value::string("Hi")}})})}})})},
    }));
    EXPECT_EQ(info->gameName, "Unknown");
    EXPECT_EQ(info->descriptionText, "Unknown");
    ASSERT_TRUE(info->events && info->events->actions);
    const GameAction* first = info->events->actions.get();
    ASSERT_TRUE(first->message.has_value());
    EXPECT_EQ(*first->message, "Hi");
    ASSERT_TRUE(first->next);
    EXPECT_FALSE(first->next->message.has_value());
}

TEST(RulesLists, EveryListRunsInReverseOfItsArray) {
    auto action = [](int id) { return dict({{"ActionID", num(id)}, {"ActionType", num(id * 10)}}); };
    Value rules = dict({
        {"SupportedEvents",
         Value::array({dict({{"EventID", num(7)}, {"EventType", num(12)},
                             {"ActionList", Value::array({action(1), action(2), action(3)})}}),
                       dict({{"EventID", num(8)}, {"EventType", num(11)}})})},
        {"SupportedUserEvents", Value::array({dict({{"UserEventID", num(1)}}), dict({{"UserEventID", num(2)}})})},
        {"CompletionCriteria", Value::array({dict({{"CompletionID", num(1)}, {"CompletionValue", num(40)}}),
                                             dict({{"CompletionID", num(2)}, {"CompletionType", num(7)}})})},
        {"VariableList", Value::array({dict({{"VariableID", num(1)}, {"VariableValue", num(-1)}}),
                                       dict({{"VariableID", num(2)}})})},
    });
    testing::internal::CaptureStdout();
    auto info = build(rules);
    const std::string out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(out, "Adding action 1 to event 7\nAdding action 2 to event 7\nAdding action 3 to event 7\n");

    EXPECT_EQ(collect(info->events.get(), &SupportedEvent::eventID), (std::vector<std::uint32_t>{8, 7}));
    const SupportedEvent* seven = info->events->next.get();
    ASSERT_TRUE(seven);
    EXPECT_EQ(seven->eventType, 12u);
    EXPECT_EQ(collect(seven->actions.get(), &GameAction::actionID), (std::vector<std::uint32_t>{3, 2, 1}));
    EXPECT_EQ(collect(seven->actions.get(), &GameAction::actionType), (std::vector<std::uint32_t>{30, 20, 10}));
    EXPECT_EQ(info->events->actions, nullptr);

    EXPECT_EQ(collect(info->userEvents.get(), &SupportedUserEvent::userEventID), (std::vector<std::uint32_t>{2, 1}));
    EXPECT_EQ(collect(info->completionCriteria.get(), &CompletionCriterion::completionID),
              (std::vector<std::uint32_t>{2, 1}));
    EXPECT_EQ(collect(info->completionCriteria.get(), &CompletionCriterion::completionValue),
              (std::vector<std::uint32_t>{0, 40}));
    EXPECT_EQ(collect(info->variables.get(), &GameVariable::variableValue),
              (std::vector<std::uint64_t>{0, ~std::uint64_t{0}}));
}

TEST(RulesActions, OptionalKeysAreReadOnlyWhenPresentWithTheirLines) {
    Value rules = dict({{"SupportedEvents",
                         Value::array({dict({{"EventID", num(4)},
                                             {"ActionList",
                                              Value::array({dict({{"ActionID", num(9)},
                                                                  {"ActionType", num(22)},
                                                                  {"ActionCriteria", num(83)},
                                                                  {"MinPieces", num(-3)},
                                                                  {"RemovePieces", num(1)},
                                                                  {"Amount", num(-5)},
                                                                  {"LowerIsBetter", num(1)},
                                                                  {"Direction", num(3)},
                                                                  {"VariableID", num(6)}}),
                                                            dict({{"ActionID", num(10)}})})}})})}});
    testing::internal::CaptureStdout();
    auto info = build(rules);
    const std::string out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(out,
              "setting action to amount.\nsetting lower is better.\nAdding action 9 to event 4\n"
              "Adding action 10 to event 4\n");
    const GameAction* bare = info->events->actions.get();
    EXPECT_EQ(bare->actionID, 10u);
    EXPECT_EQ(bare->amount, 0);
    EXPECT_EQ(bare->direction, 0);
    EXPECT_EQ(bare->lowerIsBetter, 0u);
    EXPECT_EQ(bare->variableID, 0u);
    const GameAction* full = bare->next.get();
    ASSERT_TRUE(full);
    EXPECT_EQ(full->actionType, 22u);
    EXPECT_EQ(full->actionCriteria, 83u);
    EXPECT_EQ(full->minPieces, -3);
    EXPECT_EQ(full->removePieces, 1);
    EXPECT_EQ(full->amount, -5);
    EXPECT_EQ(full->lowerIsBetter, 1u);
    EXPECT_EQ(full->direction, 3);
    EXPECT_EQ(full->variableID, 6u);
}

TEST(RulesUserEvents, TriggerActionKeyAndMinimumAreRead) {
    Value rules = dict({{"SupportedUserEvents",
                         Value::array({dict({{"UserEventID", num(1)},
                                             {"UserEventType", num(3)},
                                             {"MinimumPieces", num(2)},
                                             {"UserEventCharacter", num(288)},  // low 8 bits: the space bar
                                             {"UserEventTriggerAction",
                                              dict({{"ActionID", num(11)}, {"ActionType", num(10)},
                                                    {"Amount", num(2)}})}})})}});
    testing::internal::CaptureStdout();
    auto info = build(rules);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "setting action to amount.\n");
    const SupportedUserEvent* u = info->userEvents.get();
    ASSERT_TRUE(u);
    EXPECT_EQ(u->userEventType, 3u);
    EXPECT_EQ(u->minimumPieces, 2u);
    EXPECT_EQ(u->userEventCharacter, 32);
    ASSERT_TRUE(u->triggerAction);
    EXPECT_EQ(u->triggerAction->actionID, 11u);
    EXPECT_EQ(u->triggerAction->amount, 2);
    EXPECT_EQ(u->triggerAction->next, nullptr);

    auto negative = build(dict({{"SupportedUserEvents",
                                 Value::array({dict({{"UserEventCharacter", num(200)}})})}}));
    EXPECT_EQ(negative->userEvents->userEventCharacter, -56);
    EXPECT_EQ(negative->userEvents->triggerAction, nullptr);
}

TEST(RulesOddTypes, UnexpectedKindsNeverCrashAndFollowOneRule) {
    // A list that is not an array is absent; an entry that is not a dictionary reads as an
    // empty one; a trigger action that is not a dictionary is an action with every key absent.
    auto info = build(dict({
        {"SupportedEvents", Value::array({num(5), Value::string("x"),
                                          dict({{"ActionList", Value::array({Value::boolean(true)})}})})},
        {"SupportedUserEvents", dict({{"UserEventID", num(1)}})},
        {"CompletionCriteria", Value::string("none")},
        {"VariableList", Value::array({Value::array()})},
    }));
    ASSERT_TRUE(info);
    EXPECT_EQ(collect(info->events.get(), &SupportedEvent::eventID), (std::vector<std::uint32_t>{0, 0, 0}));
    ASSERT_TRUE(info->events->actions);
    EXPECT_EQ(info->events->actions->actionID, 0u);
    EXPECT_EQ(info->userEvents, nullptr);
    EXPECT_EQ(info->completionCriteria, nullptr);
    EXPECT_EQ(collect(info->variables.get(), &GameVariable::variableID), (std::vector<std::uint32_t>{0}));

    auto trigger = build(dict({{"SupportedUserEvents",
                                Value::array({dict({{"UserEventTriggerAction", num(4)}})})}}));
    ASSERT_TRUE(trigger->userEvents && trigger->userEvents->triggerAction);
    EXPECT_EQ(trigger->userEvents->triggerAction->actionType, 0u);
}

TEST(RulesLists, AVeryLongActionListIsBuiltAndReleased) {
    Array actions(200000, dict({{"ActionID", num(1)}}));
    Value rules = dict({{"SupportedEvents", Value::array({dict({{"ActionList", Value::array(actions)}})})}});
    testing::internal::CaptureStdout();
    auto info = build(rules);
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(collect(info->events->actions.get(), &GameAction::actionID).size(), 200000u);
    info.reset();  // must not overflow the stack
}

// --- the "Actions" menu -------------------------------------------------------------------

namespace {
Value keyed(int type, int character) {
    return dict({{"UserEventType", num(type)}, {"UserEventCharacter", num(character)}});
}
Value gameWithUserEvents(std::initializer_list<Value> events) {
    return dict({{"SupportedUserEvents", Value::array(Array(events))}});
}
}  // namespace

TEST(ActionsMenuBinding, AFreshMenuHasEightDisabledActions) {
    ActionsMenu menu;
    EXPECT_EQ(menu.title(), "Actions");
    EXPECT_FALSE(menu.enabled());
    for (int i = 0; i < ActionsMenu::kItemCount; ++i) {
        EXPECT_EQ(menu.item(i).title, "Action " + std::to_string(i + 1));
        EXPECT_FALSE(menu.item(i).enabled);
        EXPECT_EQ(menu.item(i).keyEquivalent, 0);
    }
}

TEST(ActionsMenuBinding, SpaceBarRemoveSelectionTakesTheFirstItem) {
    ActionsMenu menu;
    build(gameWithUserEvents({keyed(9, 32)}), menu);
    EXPECT_TRUE(menu.enabled());
    EXPECT_EQ(menu.item(0).title, "Remove Selection");
    EXPECT_TRUE(menu.item(0).enabled);
    EXPECT_EQ(menu.item(0).keyEquivalent, ' ');
    for (int i = 1; i < ActionsMenu::kItemCount; ++i) {
        EXPECT_EQ(menu.item(i).title, "Action " + std::to_string(i + 1));
        EXPECT_FALSE(menu.item(i).enabled);
    }
}

TEST(ActionsMenuBinding, KeylessEventsBindNothingAndDoNotCount) {
    ActionsMenu menu;
    build(gameWithUserEvents({keyed(4, 0), dict({{"UserEventType", num(3)}}), keyed(3, 'w'), keyed(4, 'c')}), menu);
    EXPECT_EQ(menu.item(0).title, "Swap Adjacent");
    EXPECT_EQ(menu.item(0).keyEquivalent, 'w');
    EXPECT_EQ(menu.item(1).title, "Select Color Region");
    EXPECT_EQ(menu.item(1).keyEquivalent, 'c');
    EXPECT_FALSE(menu.item(2).enabled);

    ActionsMenu untouched;
    build(gameWithUserEvents({keyed(9, 0), keyed(9, 256)}), untouched);  // 256 keeps no bits
    EXPECT_FALSE(untouched.enabled());
    EXPECT_EQ(untouched.item(0).title, "Action 1");
}

TEST(ActionsMenuBinding, TypesOutside1To10KeepTheirActionTitle) {
    ActionsMenu menu;
    build(gameWithUserEvents({keyed(11, 'a'), keyed(0, 'b'), keyed(10, 'p'), keyed(1, 'l')}), menu);
    EXPECT_EQ(menu.item(0).title, "Action 1");
    EXPECT_TRUE(menu.item(0).enabled);
    EXPECT_EQ(menu.item(0).keyEquivalent, 'a');
    EXPECT_EQ(menu.item(1).title, "Action 2");
    EXPECT_EQ(menu.item(1).keyEquivalent, 'b');
    EXPECT_EQ(menu.item(2).title, "Select Pattern");
    EXPECT_EQ(menu.item(3).title, "Move Launcher");
}

TEST(ActionsMenuBinding, ASecondGameInTheSameRunFindsNoAction1) {
    ActionsMenu menu;
    build(gameWithUserEvents({keyed(9, 32)}), menu);
    build(gameWithUserEvents({keyed(4, 'x'), keyed(3, 'y')}), menu);
    // "Action 1" was retitled by the first game; the second game's first key finds nothing,
    // its second key takes "Action 2".
    EXPECT_EQ(menu.item(0).title, "Remove Selection");
    EXPECT_EQ(menu.item(0).keyEquivalent, ' ');
    EXPECT_EQ(menu.item(1).title, "Swap Adjacent");
    EXPECT_EQ(menu.item(1).keyEquivalent, 'y');
}

TEST(ActionsMenuBinding, MoreKeysThanItemsLeaveTheMenuAsItIs) {
    ActionsMenu menu;
    std::vector<Value> events;
    for (int i = 0; i < 12; ++i) events.push_back(keyed(99, 'a' + i));
    build(dict({{"SupportedUserEvents", Value::array(Array(events.begin(), events.end()))}}), menu);
    for (int i = 0; i < ActionsMenu::kItemCount; ++i) EXPECT_EQ(menu.item(i).keyEquivalent, 'a' + i);
}

TEST(ActionsMenuBinding, TitlesOfUserEventTypes) {
    const char* expected[] = {"Move Launcher", "Rotate Selection", "Swap Adjacent", "Select Color Region",
                              "Select Shape Region", "Move Row", "Move Column", "Fire",
                              "Remove Selection", "Select Pattern"};
    for (std::uint32_t t = 1; t <= 10; ++t) EXPECT_STREQ(ActionsMenu::titleForUserEventType(t), expected[t - 1]);
    EXPECT_EQ(ActionsMenu::titleForUserEventType(0), nullptr);
    EXPECT_EQ(ActionsMenu::titleForUserEventType(11), nullptr);
    EXPECT_EQ(ActionsMenu::titleForUserEventType(300), nullptr);
}
