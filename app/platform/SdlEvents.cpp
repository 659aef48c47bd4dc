#include "platform/SdlEvents.h"

namespace tolvar {

std::uint16_t keyCodeForScancode(SDL_Scancode scancode) {
    if (scancode == SDL_SCANCODE_ESCAPE) return kKeyCodeEscape;
    // Every other key: its scancode moved past the Escape code, so no key but Escape is 53.
    return static_cast<std::uint16_t>(0x100 + static_cast<int>(scancode));
}

std::string charactersForKey(SDL_Keycode key, std::uint16_t modifiers) {
    switch (key) {
        case SDLK_ESCAPE: return "\x1b";
        case SDLK_RETURN:
        case SDLK_KP_ENTER: return "\r";
        case SDLK_TAB: return "\t";
        case SDLK_BACKSPACE: return "\x7f";
        case SDLK_SPACE: return " ";
        default: break;
    }
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
    return {};
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
        case SDL_KEYUP:
            if (event.key.repeat) return std::nullopt;
            e.type = event.type == SDL_KEYDOWN ? kEventTypeKeyDown : kEventTypeKeyUp;
            e.keyCode = keyCodeForScancode(event.key.keysym.scancode);
            e.characters = charactersForKey(event.key.keysym.sym, event.key.keysym.mod);
            return e;
        default:
            return std::nullopt;
    }
}

}  // namespace tolvar
