// The sounds the engine asks the view for: one for each thing the player sees happen, in the order
// it happens, and an action's own "Sound" in place of the sounds it makes by itself.
#include <gtest/gtest.h>

#include "PlayFixture.h"

using namespace tolvar;
using namespace tolvar::testing;

namespace {

using Sounds = std::vector<std::string>;

// game with "Sound" set to sound on each action of type actionType in its events.
Value withActionSound(const Value& game, std::uint32_t actionType, const std::string& sound) {
    Dictionary rules = *game.asDictionary();
    Array events = *rules.find("SupportedEvents")->asArray();
    for (Value& event : events) {
        Dictionary e = *event.asDictionary();
        const Value* list = e.find("ActionList");
        if (!list) continue;
        Array actions = *list->asArray();
        for (Value& action : actions) {
            Dictionary a = *action.asDictionary();
            if (a.find("ActionType")->intValue() != static_cast<std::int32_t>(actionType)) continue;
            a.set("Sound", Value::string(sound));
            action = Value::dictionary(std::move(a));
        }
        e.set("ActionList", Value::array(std::move(actions)));
        event = Value::dictionary(std::move(e));
    }
    rules.set("SupportedEvents", Value::array(std::move(events)));
    return Value::dictionary(std::move(rules));
}

TEST_F(PlayerAidsTest, SelectingDeselectingAndRemovingSoundAsTheyHappen) {
    start(smallVexamor(), kSmall);  // columns "12", "12", "33"
    view.sounds.clear();
    click({0, 0}, {0, 0});  // the two 1s
    click({0, 0}, {0, 0});
    EXPECT_EQ(view.sounds, (Sounds{"select", "deselect"}));
    click({0, 0}, {0, 0});
    key(U' ');
    tick();
    // The 1s go, the 2s fall into their cells.
    EXPECT_EQ(view.sounds, (Sounds{"select", "deselect", "select", "removal", "landing"}));
}

TEST_F(PlayerAidsTest, AnActionsOwnSoundTakesThePlaceOfItsOwnSounds) {
    start(withActionSound(smallVexamor(), kActionCollapseInDirection, "thud.ogg"), kSmall);
    view.sounds.clear();
    click({0, 0}, {0, 0});
    key(U' ');
    tick();
    EXPECT_EQ(view.sounds, (Sounds{"select", "removal", "thud.ogg"}));
}

TEST_F(PlayerAidsTest, TheLastMoveSoundsTheEndAndANewBestScore) {
    start(with(createTestGameOne(), {{"BoardWidth", 2}, {"BoardHeight", 1}}), {2, 2});
    view.sounds.clear();
    click({0, 0}, {0, 0});
    key(U' ');
    tick();
    EXPECT_EQ(view.sounds, (Sounds{"select", "removal", "end", "best-score"}));
}

TEST_F(PlayerAidsTest, ASwapThatJoinsPairsSoundsTheSwapTheRemovalAndTheLanding) {
    // Trindle on 4 x 2, columns "12", "21", "34", "34": swapping (0,0) with (1,0) joins two pairs.
    start(with(createTestGameTwo(), {{"BoardWidth", 4}, {"BoardHeight", 2}}), {1, 2, 2, 1, 3, 4, 3, 4});
    view.sounds.clear();
    click({0, 0}, {1, 0});
    tick();
    EXPECT_EQ(view.sounds, (Sounds{"swap", "removal", "landing"}));
}

TEST_F(PlayerAidsTest, ARefillSoundsOnceForAllTheCellsItFills) {
    Value game = smallVexamor();
    Dictionary rules = *game.asDictionary();
    Array events = *rules.find("SupportedEvents")->asArray();
    Dictionary fill;
    fill.set("ActionType", Value::integer(kActionFillSpacesRandomly));
    for (Value& event : events) {
        Dictionary e = *event.asDictionary();
        if (e.find("EventType")->intValue() != static_cast<std::int32_t>(kEventPiecesRemoved)) continue;
        Array actions = *e.find("ActionList")->asArray();
        actions.push_back(Value::dictionary(fill));
        e.set("ActionList", Value::array(std::move(actions)));
        event = Value::dictionary(std::move(e));
    }
    rules.set("SupportedEvents", Value::array(std::move(events)));
    start(Value::dictionary(std::move(rules)), kSmall);
    view.sounds.clear();
    click({0, 0}, {0, 0});
    key(U' ');
    tick();
    // The fill, listed last, runs first (a list runs from its end): the holes fill, nothing falls.
    EXPECT_EQ(view.sounds, (Sounds{"select", "removal", "refill"}));
}

}  // namespace
