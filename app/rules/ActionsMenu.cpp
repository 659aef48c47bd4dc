#include "rules/ActionsMenu.h"

namespace tolvar {

ActionsMenu::ActionsMenu() {
    for (int i = 0; i < kItemCount; ++i) items_[i].title = "Action " + std::to_string(i + 1);
}

const char* ActionsMenu::titleForUserEventType(std::uint32_t userEventType) {
    switch (userEventType) {
        case 1: return "Move Launcher";
        case 2: return "Rotate Selection";
        case 3: return "Swap Adjacent";
        case 4: return "Select Color Region";
        case 5: return "Select Shape Region";
        case 6: return "Move Row";
        case 7: return "Move Column";
        case 8: return "Fire";
        case 9: return "Remove Selection";
        case 10: return "Select Pattern";
        default: return nullptr;
    }
}

void ActionsMenu::bindUserEvent(int counter, std::uint32_t userEventType, std::int8_t character) {
    if (character == 0) return;
    // The "Actions" item comes alive with its first binding, even when no item matches.
    enabled_ = true;
    const std::string wanted = "Action " + std::to_string(counter);
    for (ActionsMenuItem& item : items_) {
        if (item.title != wanted) continue;
        item.keyEquivalent = character;
        item.enabled = true;
        if (const char* title = titleForUserEventType(userEventType)) item.title = title;
    }
}

std::string keyEquivalentLabel(std::int8_t key) {
    switch (key) {
        case 0: return {};
        case ' ': return "Space";
        case 27: return "Esc";
        case '\r': return "Return";
        case '\t': return "Tab";
        case 127: return "Delete";
        default: break;
    }
    const unsigned char c = static_cast<unsigned char>(key);
    if (c < 32 || c > 126) return "#" + std::to_string(static_cast<int>(c));
    if (c >= 'a' && c <= 'z') return std::string(1, static_cast<char>(c - 'a' + 'A'));
    return std::string(1, static_cast<char>(c));
}

}  // namespace tolvar
