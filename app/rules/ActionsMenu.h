// The "Actions" menu as a model: the window renders it, the rules bind keyed user events to it.
//
// An "Actions" item (disabled until a binding enables it) whose submenu holds 8 items titled
// "Action 1" to "Action 8", all disabled and without key equivalent. Binding a user event with
// a key enables the "Actions" item and the matching "Action N" item, gives it the key as its
// equivalent (no modifier) and, for user event types 1 to 10, the type's title. Items are never
// reset within a run, so the first game's bindings stay in force.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace tolvar {

struct ActionsMenuItem {
    std::string title;
    bool enabled = false;
    std::int8_t keyEquivalent = 0;  // 0 = none
};

// The text shown for a key equivalent, beside a menu item and in the help ("Space", "Esc", "A", ...).
std::string keyEquivalentLabel(std::int8_t key);

class ActionsMenu {
public:
    static constexpr int kItemCount = 8;

    ActionsMenu();

    const std::string& title() const { return title_; }  // "Actions"
    bool enabled() const { return enabled_; }
    const std::array<ActionsMenuItem, kItemCount>& items() const { return items_; }
    const ActionsMenuItem& item(int index) const { return items_.at(index); }  // 0-based

    // Binds a user event with a non-zero key to the item titled "Action <counter>", if any still
    // bears that title (see the header comment).
    void bindUserEvent(int counter, std::uint32_t userEventType, std::int8_t character);

    // The title a bound item takes for a user event type, or nullptr outside 1..10.
    static const char* titleForUserEventType(std::uint32_t userEventType);

private:
    std::string title_ = "Actions";
    bool enabled_ = false;
    std::array<ActionsMenuItem, kItemCount> items_;
};

}  // namespace tolvar
