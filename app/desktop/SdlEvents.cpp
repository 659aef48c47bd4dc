#include "desktop/SdlEvents.h"

namespace tolvar {

std::uint16_t keyCodeForScancode(SDL_Scancode scancode) {
    if (scancode == SDL_SCANCODE_ESCAPE) return kKeyCodeEscape;
    // Every other key: its scancode moved past the Escape code, so no key but Escape is 53.
    return static_cast<std::uint16_t>(0x100 + static_cast<int>(scancode));
}

namespace {
// The private-use character of an arrow, function or editing key, or 0.
char32_t specialKeyCharacter(SDL_Keycode key) {
    if (key >= SDLK_F1 && key <= SDLK_F12) return kKeyF1 + static_cast<char32_t>(key - SDLK_F1);
    if (key >= SDLK_F13 && key <= SDLK_F24) return kKeyF1 + 12 + static_cast<char32_t>(key - SDLK_F13);
    switch (key) {
        case SDLK_UP: return kKeyUpArrow;
        case SDLK_DOWN: return kKeyDownArrow;
        case SDLK_LEFT: return kKeyLeftArrow;
        case SDLK_RIGHT: return kKeyRightArrow;
        case SDLK_INSERT: return kKeyInsert;
        case SDLK_DELETE: return kKeyDelete;
        case SDLK_HOME: return kKeyHome;
        case SDLK_END: return kKeyEnd;
        case SDLK_PAGEUP: return kKeyPageUp;
        case SDLK_PAGEDOWN: return kKeyPageDown;
        case SDLK_PRINTSCREEN: return kKeyPrintScreen;
        case SDLK_SCROLLLOCK: return kKeyScrollLock;
        case SDLK_PAUSE: return kKeyPause;
        case SDLK_APPLICATION:
        case SDLK_MENU: return kKeyMenu;
        case SDLK_HELP: return kKeyHelp;
        default: return 0;
    }
}

bool isModifierOrLock(SDL_Keycode key) {
    switch (key) {
        case SDLK_LSHIFT: case SDLK_RSHIFT: case SDLK_LCTRL: case SDLK_RCTRL:
        case SDLK_LALT: case SDLK_RALT: case SDLK_LGUI: case SDLK_RGUI:
        case SDLK_CAPSLOCK: case SDLK_NUMLOCKCLEAR: case SDLK_MODE:
            return true;
        default:
            return false;
    }
}
}  // namespace

std::string charactersForKey(SDL_Keycode key, std::uint16_t modifiers) {
    switch (key) {
        case SDLK_ESCAPE: return "\x1b";
        case SDLK_RETURN:
        case SDLK_KP_ENTER: return std::string(1, kCharacterReturn);
        case SDLK_TAB: return "\t";
        case SDLK_BACKSPACE: return "\x7f";
        case SDLK_SPACE: return " ";
        case SDLK_KP_DIVIDE: return "/";
        case SDLK_KP_MULTIPLY: return "*";
        case SDLK_KP_MINUS: return "-";
        case SDLK_KP_PLUS: return "+";
        case SDLK_KP_PERIOD: return ".";
        case SDLK_KP_EQUALS: return "=";
        default: break;
    }
    if (const char32_t special = specialKeyCharacter(key)) return utf8(special);
    if (key >= 'a' && key <= 'z') {
        const bool shift = (modifiers & KMOD_SHIFT) != 0;
        const bool caps = (modifiers & KMOD_CAPS) != 0;
        char c = static_cast<char>(key);
        if (shift != caps) c = static_cast<char>(c - 'a' + 'A');
        return std::string(1, c);
    }
    if (key > ' ' && key < 0x7f) {
        // Digits and punctuation, with the shifted characters of a US keyboard.
        static constexpr char kPlain[] = "1234567890-=[]\\;',./`";
        static constexpr char kShifted[] = "!@#$%^&*()_+{}|:\"<>?~";
        char c = static_cast<char>(key);
        if (modifiers & KMOD_SHIFT) {
            for (std::size_t i = 0; i + 1 < sizeof kPlain; ++i)
                if (kPlain[i] == c) { c = kShifted[i]; break; }
        }
        return std::string(1, c);
    }
    if (key >= SDLK_KP_1 && key <= SDLK_KP_9) return std::string(1, static_cast<char>('1' + (key - SDLK_KP_1)));
    if (key == SDLK_KP_0) return "0";
    // Another character of the layout (an accented letter, ...): its code point.
    if (key > 0x7f && (key & SDLK_SCANCODE_MASK) == 0) return utf8(static_cast<char32_t>(key));
    return {};
}

KeyTranslation translateKey(const SDL_KeyboardEvent& key) {
    KeyTranslation t;
    const SDL_Keycode sym = key.keysym.sym;
    const std::uint16_t mod = key.keysym.mod;
    if (key.repeat || isModifierOrLock(sym)) return t;
    const std::string characters = charactersForKey(sym, mod);
    // Neither a character nor a key of the game's own (a media key, a launcher key).
    if (characters.empty() && sym != SDLK_UNKNOWN) return t;
    const bool commandHeld = (mod & (KMOD_CTRL | KMOD_ALT | KMOD_GUI)) != 0;
    if (commandHeld && sym > ' ' && sym < 0x7f) {
        if (key.type == SDL_KEYDOWN) {
            t.kind = KeyTranslation::Kind::Command;
            t.command = static_cast<char>(sym);
            t.shift = (mod & KMOD_SHIFT) != 0;
        }
        return t;
    }
    t.kind = KeyTranslation::Kind::GameKey;
    t.event.type = key.type == SDL_KEYDOWN ? kEventTypeKeyDown : kEventTypeKeyUp;
    t.event.keyCode = keyCodeForScancode(key.keysym.scancode);
    t.event.characters = characters;
    return t;
}

std::optional<CurrentEvent> currentEventFromSdl(const SDL_Event& event, int windowHeight) {
    CurrentEvent e;
    switch (event.type) {
        case SDL_MOUSEBUTTONDOWN:
        case SDL_MOUSEBUTTONUP: {
            const bool down = event.type == SDL_MOUSEBUTTONDOWN;
            if (event.button.button == SDL_BUTTON_LEFT)
                e.type = down ? kEventTypeMouseDown : kEventTypeMouseUp;
            else if (event.button.button == SDL_BUTTON_RIGHT)
                e.type = down ? kEventTypeRightMouseDown : kEventTypeRightMouseUp;
            else
                return std::nullopt;
            e.x = static_cast<float>(event.button.x);
            e.y = static_cast<float>(windowHeight - event.button.y);
            return e;
        }
        case SDL_MOUSEMOTION:
            e.type = kEventTypeMouseMoved;
            e.x = static_cast<float>(event.motion.x);
            e.y = static_cast<float>(windowHeight - event.motion.y);
            return e;
        case SDL_KEYDOWN:
        case SDL_KEYUP: {
            const KeyTranslation key = translateKey(event.key);
            if (key.kind != KeyTranslation::Kind::GameKey) return std::nullopt;
            return key.event;
        }
        default:
            return std::nullopt;
    }
}

}  // namespace tolvar
