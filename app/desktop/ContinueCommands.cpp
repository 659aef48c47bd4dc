// Continue and the saved games: what the main window offers to continue, and the unfinished game
// kept in the data folder's "SavedGame.dict" beside the other copies' games.
#include <cstdio>

#include "desktop/TolvarAppDelegate.h"
#include "core/Translate.h"
#include "presentation/ScoreText.h"

namespace tolvar {

namespace {
std::optional<Value> entryOf(const std::map<std::string, Value>& games, const std::string& title) {
    const auto it = games.find(title);
    return it == games.end() ? std::nullopt : std::optional<Value>(it->second);
}

double savedAt(const Value& game) {
    const Value* when = game.asDictionary()->find(SavedGamesFile::kSavedAtKey);
    return when && when->isDate() ? when->asDate()->unixTime() : 0.0;  // older files had no date
}
}  // namespace

const Value* TolvarAppDelegate::rulesOf(const std::string& title) const {
    const Dictionary* games = library_.allGameRules() ? library_.allGameRules()->asDictionary() : nullptr;
    return games ? games->find(title) : nullptr;
}

void TolvarAppDelegate::readSavedGame() {
    const SavedGames read = savedGames_.read();
    if (!read.unreadable.empty()) {
        continueNote_ = trf("The saved games in %s cannot be read: %s.", savedGames_.path(), read.unreadable);
        std::fprintf(stderr, "%s: cannot be read (%s); no saved game is offered\n", savedGames_.path().c_str(),
                     read.unreadable.c_str());
    }
    saved_ = known_ = read.games;
    checkSavedGames();
}

void TolvarAppDelegate::checkSavedGames() {
    refused_.clear();
    for (const auto& [title, game] : saved_) {
        const std::string why = Engine::savedGameProblem(game, rulesOf(title));
        if (why.empty()) continue;
        refused_[title] = why;
        std::fprintf(stderr, "%s: %s\n", savedGames_.path().c_str(), why.c_str());
    }
}

TolvarAppDelegate::ContinueOffer TolvarAppDelegate::continueOffer() const {
    const std::string chosen = library_.currentRules() ? library_.selectedTitle() : std::string();
    const bool kept = engine_ && engine_->hasUnfinishedGame() && !(gameWindow && gameWindow->isVisible());
    const bool chosenSaved = saved_.count(chosen) != 0;
    // The chosen game's own: the one left for the main window, else the saved one; a game with
    // neither offers the game left, else the game saved last.
    if (kept && (runningGame()->gameName == chosen || !chosenSaved)) return {ContinueOffer::Kind::Kept, runningGame()->gameName};
    if (chosenSaved) return {ContinueOffer::Kind::Saved, chosen};
    const std::pair<const std::string, Value>* latest = nullptr;
    for (const auto& entry : saved_)
        if (!latest || savedAt(entry.second) > savedAt(latest->second)) latest = &entry;
    if (latest) return {ContinueOffer::Kind::Saved, latest->first};
    return {};
}

bool TolvarAppDelegate::canContinue() const {
    const ContinueOffer offer = continueOffer();
    return offer.kind == ContinueOffer::Kind::Kept ||
           (offer.kind == ContinueOffer::Kind::Saved && refused_.count(offer.title) == 0);
}

std::string TolvarAppDelegate::continueText() const {
    const ContinueOffer offer = continueOffer();
    // " (board 123456)" when the board has a number (games saved by earlier versions have none).
    auto board = [](std::uint32_t number) { return number ? trf(" (board %s)", std::to_string(number)) : std::string(); };
    if (offer.kind == ContinueOffer::Kind::Kept)
        // TRANSLATORS: the game's name, then " (board 123456)" or nothing.
        return trf("Continue: the game of \"%s\" you left%s.", offer.title, board(engine_->boardNumber()));
    if (offer.kind != ContinueOffer::Kind::Saved || refused_.count(offer.title)) return {};
    const Value& saved = saved_.at(offer.title);
    const Value* when = saved.asDictionary()->find(SavedGamesFile::kSavedAtKey);
    const std::string date = scoreDateText(when ? when->asDate() : nullptr);
    const std::string number = board(Engine::savedGameBoardNumber(saved));
    // TRANSLATORS: the game's name, " (board 123456)" or nothing, and the date it was saved.
    if (!date.empty()) return trf("Continue: your unfinished game of \"%s\"%s, saved %s.", offer.title, number, date);
    return trf("Continue: your unfinished game of \"%s\"%s.", offer.title, number);
}

std::string TolvarAppDelegate::continueProblem() const {
    const ContinueOffer offer = continueOffer();
    const auto refused = offer.kind == ContinueOffer::Kind::Saved ? refused_.find(offer.title) : refused_.end();
    if (refused != refused_.end()) return savedGames_.path() + ": " + refused->second;
    return continueNote_;
}

void TolvarAppDelegate::continueGame() {
    if (!gameWindow) return;
    gameWindow->makeCurrentContext();
    const ContinueOffer offer = continueOffer();
    if (offer.kind == ContinueOffer::Kind::Kept) {
        engine_->resumeGame();
        return;
    }
    if (offer.kind != ContinueOffer::Kind::Saved || refused_.count(offer.title)) return;
    // The game left for the main window is not lost: it is saved as it would be at quit.
    if (engine_->hasUnfinishedGame()) storeRunningGame(engine_->savedGame());
    const Value saved = saved_.at(offer.title);
    continueNote_ = engine_->continueGame(saved, rulesOf(offer.title), menu_);
    if (continueNote_.empty()) {
        saved_.erase(offer.title);
        // The game played is the one chosen from now on: the main window and Start name it.
        selectGame(offer.title);
    }
    mainFrames_ = kMainWindowFramesPerChange;
}

void TolvarAppDelegate::storeRunningGame(const std::optional<Value>& game) {
    if (!runningGame()) return;
    const std::string title = runningGame()->gameName;
    std::optional<Value> written;
    const StoredGame stored = savedGames_.store(title, game, entryOf(known_, title), &written);
    if (stored.replacedNewer) {
        continueNote_ = trf("Another copy of Tolvar saved a game of \"%s\" after this one read %s; this copy's game "
                            "replaces it, and the other is kept as %s.",
                            title, savedGames_.path(), stored.replacedKeptAs);
        std::fprintf(stderr, "tolvar: %s\n", continueNote_.c_str());
    }
    if (stored.error) {
        std::fprintf(stderr, "tolvar: the unfinished game could not be saved: %s\n", stored.error->message().c_str());
        return;
    }
    if (written) {
        known_[title] = saved_[title] = *written;
    } else {
        known_.erase(title);
        saved_.erase(title);
    }
}

void TolvarAppDelegate::saveGameOnQuit() {
    // A game played to its end, or dealt anew and not kept, takes its title's saved game with it.
    // A quit while the window still plays what the last tick showed (a flash, a fall, an alert)
    // keeps the game as it was before that tick: continued, the tick runs again in full.
    if (!engine_) return;
    storeRunningGame(show_.idle() ? engine_->savedGame() : engine_->savedGameBeforeTick());
}

}  // namespace tolvar
