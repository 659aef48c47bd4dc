#include "presentation/ShowQueue.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace tolvar {

BoardPicture BoardPicture::of(const GameInfo& game) {
    BoardPicture p;
    p.boardWidth = game.boardWidth;
    p.boardHeight = game.boardHeight;
    p.hasLauncher = game.hasLauncher;
    p.squareShapes = game.squareShapes;
    p.board = game.board;
    p.score = game.score;
    p.gameName = game.gameName;
    p.selectColor = game.selectColor;
    return p;
}

void BoardPicture::into(GameInfo& game) const {
    game.boardWidth = boardWidth;
    game.boardHeight = boardHeight;
    game.hasLauncher = hasLauncher;
    game.squareShapes = squareShapes;
    game.board = board;
    game.score = score;
    game.gameName = gameName;
    game.selectColor = selectColor;
}

void ShowQueue::append(ShowStep step) {
    if (steps_.empty() && !answering_) started_ = false;  // the first step plays at once
    const bool overdrawn = !steps_.empty() && steps_.back().kind == ShowStep::Kind::Board &&
                           steps_.back().holdSeconds <= 0.0 && step.kind == ShowStep::Kind::Board;
    // The frame drawn over hands its sounds on: they play with the frame that shows.
    std::vector<std::string> sounds = overdrawn ? std::move(steps_.back().sounds) : std::vector<std::string>();
    sounds.insert(sounds.end(), std::make_move_iterator(pendingSounds_.begin()),
                  std::make_move_iterator(pendingSounds_.end()));
    sounds.insert(sounds.end(), std::make_move_iterator(step.sounds.begin()), std::make_move_iterator(step.sounds.end()));
    pendingSounds_.clear();
    step.sounds = std::move(sounds);
    if (overdrawn) steps_.back() = std::move(step);
    else steps_.push_back(std::move(step));
}

void ShowQueue::holdLast(double seconds) {
    if (!steps_.empty()) steps_.back().holdSeconds = seconds;
}

std::vector<ShowStep> ShowQueue::takeDue(double now) {
    std::vector<ShowStep> due;
    if (answering_) return due;
    if (!started_) {
        started_ = true;
        dueAt_ = now;
    }
    while (!steps_.empty() && dueAt_ <= now) {
        due.push_back(std::move(steps_.front()));
        steps_.pop_front();
        const ShowStep& shown = due.back();
        if (shown.kind == ShowStep::Kind::Alert) {
            answering_ = true;
            shownAlert_ = shown.alert;
            break;
        }
        // Held its full time from when it went up, however late the loop woke: the flash never hurries.
        dueAt_ = now + shown.holdSeconds;
    }
    return due;
}

std::vector<ShowStep> ShowQueue::takeUntilAlert() {
    std::vector<ShowStep> taken;
    if (answering_) return taken;
    while (!steps_.empty()) {
        taken.push_back(std::move(steps_.front()));
        steps_.pop_front();
        if (taken.back().kind == ShowStep::Kind::Alert) {
            answering_ = true;
            shownAlert_ = taken.back().alert;
            break;
        }
    }
    started_ = false;  // what is left plays from the next look at the clock
    return taken;
}

std::vector<ShowStep> ShowQueue::takeAll() {
    std::vector<ShowStep> taken;
    for (ShowStep& step : steps_)
        if (step.kind != ShowStep::Kind::Alert) taken.push_back(std::move(step));
    steps_.clear();
    pendingSounds_.clear();
    answering_ = false;
    started_ = false;
    return taken;
}

void ShowQueue::answer(double now) {
    if (!answering_) return;
    answering_ = false;
    started_ = true;
    dueAt_ = now;
}

double ShowQueue::secondsUntilDue(double now) const {
    if (answering_ || steps_.empty()) return -1.0;
    if (!started_) return 0.0;
    return std::max(0.0, dueAt_ - now);
}

}  // namespace tolvar
