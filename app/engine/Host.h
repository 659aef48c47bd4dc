// What the engine asks of the desktop: alerts, windows, timers, the projection reset. The SDL shell implements it; the headless runner and the tests
// implement it without a display.
#pragma once

#include <cstdint>
#include <string>

#include "core/PropertyList.h"
#include "core/ScoreStore.h"
#include "core/Utf8.h"

namespace tolvar {

// Event types of the game window's current event.
enum CurrentEventType : std::int64_t {
    kEventTypeNone = 0,
    kEventTypeMouseDown = 1,
    kEventTypeMouseUp = 2,
    kEventTypeMouseMoved = 5,
    kEventTypeKeyDown = 10,
    kEventTypeKeyUp = 11,
};
constexpr std::uint16_t kKeyCodeEscape = 53;

// Keys that type no text still carry characters of their own, from the private-use area (so
// the first byte of their UTF-8 form, 0xEF, is never 0 and never a typed character).
enum KeyCharacter : char32_t {
    kKeyUpArrow = 0xF700,
    kKeyDownArrow = 0xF701,
    kKeyLeftArrow = 0xF702,
    kKeyRightArrow = 0xF703,
    kKeyF1 = 0xF704,  // F1 to F24 follow one another
    kKeyInsert = 0xF727,
    kKeyDelete = 0xF728,  // the forward delete
    kKeyHome = 0xF729,
    kKeyEnd = 0xF72B,
    kKeyPageUp = 0xF72C,
    kKeyPageDown = 0xF72D,
    kKeyPrintScreen = 0xF72E,
    kKeyScrollLock = 0xF72F,
    kKeyPause = 0xF730,
    kKeyMenu = 0xF735,
    kKeyHelp = 0xF746,
};
// Return and the keypad's Enter.
constexpr char kCharacterReturn = '\r';
constexpr char kCharacterEnter = '\x03';

// The last event delivered to the game window.
struct CurrentEvent {
    std::int64_t type = kEventTypeNone;
    std::uint16_t keyCode = 0;  // key events only; the same key always has the same code
    std::string characters;     // UTF-8 text of a key event ("\x1b" for Escape, " " for space)
    float x = 0.0f;             // location in the window, origin at the lower left
    float y = 0.0f;
};

// The first byte of a key event's characters as the signed character the rules compare with
// "UserEventCharacter"; 0 when the characters are empty.
inline std::int8_t firstCharacter(const CurrentEvent& event) {
    return event.characters.empty() ? 0 : static_cast<std::int8_t>(event.characters[0]);
}

// The first character of a key event's characters, decoded from UTF-8 (0 when empty or not
// UTF-8).
char32_t firstKeyCharacter(const CurrentEvent& event);

class Host {
public:
    virtual ~Host() = default;

    // An alert with one button, shown literally. The engine goes on at once; the desktop shows
    // it in order with what was drawn around it, and nothing else of the game plays until the
    // player answers it.
    virtual void runAlert(const std::string& title, const std::string& message,
                          const std::string& button) = 0;

    // The score screen's repeating 0.033 s timer, which redraws the screen for scores.
    virtual bool scoresTimerRunning() const = 0;
    virtual void startScoresTimer(const Value& scores) = 0;
    virtual void stopScoresTimer() = 0;

    // The Escape restart's projection: orthographic 0..winWidth, 0..winHeight, near 600,
    // far -600; the matrix mode is left on the projection.
    virtual void resetProjection() = 0;

    // The windows.
    virtual void showGameWindow() = 0;  // to the front, as key window
    virtual void hideGameWindow() = 0;
    virtual void showMainWindow() = 0;
    virtual void hideMainWindow() = 0;

    // Schedules the two engine timers (event tick 0.033 s, input poll). Called at the first start.
    virtual void scheduleEngineTimers() = 0;

    // Where the best scores are kept.
    virtual ScoreStore& scoreStore() = 0;
};

}  // namespace tolvar
