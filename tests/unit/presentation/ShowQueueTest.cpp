#include "presentation/ShowQueue.h"

#include <gtest/gtest.h>

#include <string>

#include "engine/BoardLayout.h"

namespace tolvar {
namespace {

ShowStep board(std::uint64_t score, double hold = 0.0) {
    ShowStep s;
    s.kind = ShowStep::Kind::Board;
    s.board.score = score;
    s.holdSeconds = hold;
    return s;
}

ShowStep alert(const std::string& message) {
    ShowStep s;
    s.kind = ShowStep::Kind::Alert;
    s.alert = {" ", message, "OK"};
    return s;
}

// "b<score>" for a frame, "a:<message>" for an alert, "s" for the score screen.
std::string names(const std::vector<ShowStep>& steps) {
    std::string text;
    for (const ShowStep& s : steps) {
        if (!text.empty()) text += ' ';
        switch (s.kind) {
            case ShowStep::Kind::Board: text += "b" + std::to_string(s.board.score); break;
            case ShowStep::Kind::Alert: text += "a:" + s.alert.message; break;
            case ShowStep::Kind::Scores: text += "s"; break;
            case ShowStep::Kind::Fall: text += "f"; break;
        }
    }
    return text;
}

TEST(ShowQueue, FramesDrawnOverAtOnceCollapseAndHeldFramesPlayInTime) {
    ShowQueue q;
    q.append(board(1));
    q.append(board(2));  // draws over 1 before anyone sees it
    q.holdLast(0.1);     // a flash frame
    q.append(board(3));
    q.holdLast(0.1);
    q.append(board(4));
    EXPECT_EQ(q.secondsUntilDue(10.0), 0.0);
    EXPECT_EQ(names(q.takeDue(10.0)), "b2");
    EXPECT_NEAR(q.secondsUntilDue(10.05), 0.05, 1e-9);
    EXPECT_EQ(names(q.takeDue(10.05)), "");
    // The loop woke late: the frame still stays its whole time from when it went up.
    EXPECT_EQ(names(q.takeDue(10.4)), "b3");
    EXPECT_EQ(names(q.takeDue(10.45)), "");
    EXPECT_EQ(names(q.takeDue(10.5)), "b4");
    EXPECT_TRUE(q.idle());
    EXPECT_LT(q.secondsUntilDue(10.5), 0.0);
}

TEST(ShowQueue, AnAlertHoldsWhatFollowsUntilItIsAnswered) {
    ShowQueue q;
    q.append(board(1));
    q.append(alert("first"));
    q.append(board(2));
    q.append(alert("second"));
    EXPECT_EQ(names(q.takeDue(0.0)), "b1 a:first");
    ASSERT_NE(q.alert(), nullptr);
    EXPECT_EQ(q.alert()->message, "first");
    EXPECT_LT(q.secondsUntilDue(100.0), 0.0);
    EXPECT_EQ(names(q.takeDue(100.0)), "");
    EXPECT_EQ(names(q.takeUntilAlert()), "");  // input during an alert skips nothing
    EXPECT_FALSE(q.idle());
    q.answer(100.0);
    EXPECT_EQ(q.alert(), nullptr);
    EXPECT_EQ(names(q.takeDue(100.0)), "b2 a:second");
    q.answer(101.0);
    EXPECT_TRUE(q.idle());
}

TEST(ShowQueue, InputCutsAFlashShortUpToTheNextAlertAndAClosedWindowDropsAlerts) {
    ShowQueue q;
    for (std::uint64_t frame = 1; frame <= 3; ++frame) {
        q.append(board(frame));
        q.holdLast(0.1);
    }
    q.append(alert("done"));
    q.append(board(9));
    EXPECT_EQ(names(q.takeDue(0.0)), "b1");
    EXPECT_EQ(names(q.takeUntilAlert()), "b2 b3 a:done");
    ASSERT_NE(q.alert(), nullptr);

    ShowQueue closed;
    closed.append(board(1));
    closed.holdLast(0.1);
    closed.append(alert("gone"));
    closed.append(board(2));
    EXPECT_EQ(names(closed.takeDue(0.0)), "b1");
    EXPECT_EQ(names(closed.takeAll()), "b2");
    EXPECT_TRUE(closed.idle());
}

TEST(ShowQueue, WhatComesAfterAQuietSpellPlaysAtOnce) {
    ShowQueue q;
    q.append(board(1));
    q.holdLast(0.1);
    q.append(board(2));
    EXPECT_EQ(names(q.takeDue(0.0)), "b1");
    EXPECT_EQ(names(q.takeDue(0.1)), "b2");
    q.append(board(3));  // the next tick, a minute later
    EXPECT_EQ(q.secondsUntilDue(60.0), 0.0);
    EXPECT_EQ(names(q.takeDue(60.0)), "b3");
}

// A frame's picture is taken when the engine draws and drawn later: it carries what the frame draws
// and lays the board out as the game does, whatever the board's shape.
TEST(BoardPicture, CarriesWhatTheFrameDrawsAndItsLayout) {
    struct Case {
        std::uint8_t width, height, launcher, square;
    };
    for (const Case& c : {Case{8, 8, 0, 1}, Case{2, 1, 0, 1}, Case{2, 1, 1, 1}, Case{5, 3, 1, 0}}) {
        SCOPED_TRACE(testing::Message() << int(c.width) << " x " << int(c.height) << " launcher " << int(c.launcher));
        GameInfo game;
        game.boardWidth = c.width, game.boardHeight = c.height, game.hasLauncher = c.launcher, game.squareShapes = c.square;
        game.board.resize(std::size_t(c.width) * c.height);
        game.board[1].pieceID = 7, game.score = 42, game.gameName = "Tiny", game.selectColor = {0.2f, 0.3f, 0.4f};
        const BoardPicture picture = BoardPicture::of(game);
        const BoardLayout want = computeBoardLayout(game);
        game.board[1].pieceID = 0, game.score = 0;  // the game goes on after the frame was taken
        GameInfo drawn;
        picture.into(drawn);
        EXPECT_EQ(drawn.board[1].pieceID, 7u);
        EXPECT_EQ(drawn.score, 42u);
        EXPECT_EQ(drawn.gameName, "Tiny");
        EXPECT_FLOAT_EQ(drawn.selectColor.blue, 0.4f);
        const BoardLayout got = computeBoardLayout(drawn);
        EXPECT_FLOAT_EQ(got.left, want.left);
        EXPECT_FLOAT_EQ(got.m, want.m);
        EXPECT_FLOAT_EQ(got.w, want.w);
        EXPECT_FLOAT_EQ(got.h, want.h);
    }
}

TEST(ShowQueueSounds, GoWithTheNextStepAndOutliveAFrameDrawnOver) {
    ShowQueue q;
    q.append(board(1, 0.1));
    q.addSound("removal");
    q.append(board(2));  // held for no time: drawn over by the next frame, its sound kept
    q.addSound("landing");
    q.append(board(3));
    q.addSound("best-score");
    q.append(alert("best"));
    q.addSound("select");  // nothing follows: kept for the next step
    const std::vector<ShowStep> steps = q.takeUntilAlert();
    ASSERT_EQ(names(steps), "b1 b3 a:best");
    EXPECT_TRUE(steps[0].sounds.empty());
    EXPECT_EQ(steps[1].sounds, (std::vector<std::string>{"removal", "landing"}));
    EXPECT_EQ(steps[2].sounds, (std::vector<std::string>{"best-score"}));
    q.answer(0.0);
    q.append(board(4));
    EXPECT_EQ(q.takeAll().at(0).sounds, (std::vector<std::string>{"select"}));
    q.addSound("end");
    q.takeAll();  // the window went away: what was to sound goes with it
    q.append(board(5));
    EXPECT_TRUE(q.takeAll().at(0).sounds.empty());
}

}  // namespace
}  // namespace tolvar
