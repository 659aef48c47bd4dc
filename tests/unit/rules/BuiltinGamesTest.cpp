// The three games of a fresh rules file, as the engine sees them after conversion.
#include <gtest/gtest.h>

#include <vector>

#include "rules/BuiltinGames.h"
#include "rules/RulesDict.h"

using namespace tolvar;

namespace {

struct Built {
    ActionsMenu menu;
    std::unique_ptr<GameInfo> info;
    std::string output;
};

Built convert(const Value& rules) {
    Built b;
    testing::internal::CaptureStdout();
    b.info = createStructsFromRulesDict(&rules, b.menu);
    b.output = testing::internal::GetCapturedStdout();
    return b;
}

std::vector<std::uint32_t> actionIDs(const SupportedEvent* event) {
    std::vector<std::uint32_t> ids;
    for (const GameAction* a = event ? event->actions.get() : nullptr; a; a = a->next.get()) ids.push_back(a->actionID);
    return ids;
}

const SupportedEvent* eventOfType(const GameInfo& info, std::uint32_t type) {
    for (const SupportedEvent* e = info.events.get(); e; e = e->next.get())
        if (e->eventType == type) return e;
    return nullptr;
}

}  // namespace

TEST(BuiltinVexamor, RunsItsActionsLastListedFirstAndBindsTheSpaceBar) {
    Built b = convert(createTestGameOne());
    ASSERT_TRUE(b.info);
    const GameInfo& g = *b.info;
    EXPECT_EQ(g.gameName, "Vexamor");
    EXPECT_EQ(g.boardWidth, 8);
    EXPECT_EQ(g.boardHeight, 8);
    EXPECT_EQ(g.numColors, 4);
    EXPECT_EQ(g.setupRandomFill, 1);
    EXPECT_EQ(g.squareShapes, 1);
    EXPECT_EQ(g.scoreMultiplier, 1u);
    EXPECT_EQ(actionIDs(eventOfType(g, kEventGameStarted)), (std::vector<std::uint32_t>{2, 1}));
    EXPECT_EQ(actionIDs(eventOfType(g, kEventPiecesRemoved)), (std::vector<std::uint32_t>{3, 7, 4, 6}));
    EXPECT_EQ(actionIDs(eventOfType(g, kEventNoMovesLeft)), (std::vector<std::uint32_t>{10, 8, 9, 5, 11}));
    EXPECT_EQ(b.menu.item(0).title, "Remove Selection");
    EXPECT_EQ(b.menu.item(0).keyEquivalent, ' ');
    // The user event searched first is the last listed: Select Color Region, two pieces or more.
    ASSERT_TRUE(g.userEvents);
    EXPECT_EQ(g.userEvents->userEventType, kUserEventSelectColorRegion);
    EXPECT_EQ(g.userEvents->minimumPieces, 2u);
    ASSERT_TRUE(g.userEvents->next);
    EXPECT_EQ(g.userEvents->next->userEventCharacter, 32);

    const GameAction* first = eventOfType(g, kEventNoMovesLeft)->actions.get();
    EXPECT_EQ(first->actionType, 2u);
    EXPECT_EQ(first->amount, 9);
    const GameAction* alert = first->next->next->next.get();
    ASSERT_TRUE(alert->message);
    EXPECT_EQ(*alert->message, "No more moves!  Press the 'esc' key to play again after clicking 'OK'.");
    EXPECT_EQ(alert->next->lowerIsBetter, 1u);
    EXPECT_NE(b.output.find("Adding action 11 to event 3\n"), std::string::npos);
}

TEST(BuiltinTrindleAndGlimmet, SwapGamesBindNoMenuItem) {
    Built trindle = convert(createTestGameTwo());
    EXPECT_FALSE(trindle.menu.enabled());
    EXPECT_EQ(trindle.info->boardWidth, 12);
    EXPECT_EQ(trindle.info->numColors, 3);
    const GameAction* swap = trindle.info->userEvents->triggerAction.get();
    ASSERT_TRUE(swap);
    EXPECT_EQ(swap->actionCriteria, kCriteriaDownPiece | kCriteriaUpPiece | kCriteriaSwapColorsDiffer);
    EXPECT_EQ(swap->minPieces, 2);

    Built glimmet = convert(createTestGameThree());
    EXPECT_FALSE(glimmet.menu.enabled());
    EXPECT_EQ(glimmet.info->setupMaxLinearColors, 2);
    EXPECT_EQ(glimmet.info->scoreMultiplier, 1u);
    EXPECT_EQ(glimmet.info->numColors, 8);
    EXPECT_EQ(glimmet.info->userEvents->triggerAction->actionCriteria, 83u);
    EXPECT_EQ(glimmet.info->userEvents->triggerAction->minPieces, 3);
    EXPECT_EQ(actionIDs(eventOfType(*glimmet.info, kEventPiecesRemoved)), (std::vector<std::uint32_t>{3, 7, 12, 4, 6}));
    EXPECT_EQ(actionIDs(eventOfType(*glimmet.info, kEventNoMovesLeft)), (std::vector<std::uint32_t>{5, 11}));
    EXPECT_EQ(eventOfType(*glimmet.info, kEventNoMovesLeft)->actions->next->lowerIsBetter, 0u);
}

TEST(BuiltinGames, EachCallBuildsFreshDictionaries) {
    Value a = createTestGameOne();
    Value b = createTestGameOne();
    EXPECT_EQ(a, b);
    a.asDictionary()->set("BoardWidth", Value::integer(3));
    EXPECT_EQ(*b.asDictionary()->find("BoardWidth"), Value::integer(8));
}
