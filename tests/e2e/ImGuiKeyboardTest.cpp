// Typing into a window faster than it draws: every key press and every typed character reaches
// the window's fields, in the order they came, however many arrive between two frames.
#include <SDL.h>
#include <gtest/gtest.h>
#include <imgui.h>

#include <string>
#include <vector>

#include "desktop/ImGuiSurface.h"

namespace tolvar {
namespace {

// Enough frames for any test's typing; a surface that needs more is stuck.
constexpr int kMostFrames = 200;

SDL_Event keyEvent(Uint32 type, SDL_Scancode scancode, SDL_Keycode key, Uint32 windowID) {
    SDL_Event event{};
    event.type = type;
    event.key.windowID = windowID;
    event.key.state = type == SDL_KEYDOWN ? SDL_PRESSED : SDL_RELEASED;
    event.key.keysym.scancode = scancode;
    event.key.keysym.sym = key;
    return event;
}

SDL_Event textEvent(const char* text, Uint32 windowID) {
    SDL_Event event{};
    event.type = SDL_TEXTINPUT;
    event.text.windowID = windowID;
    SDL_strlcpy(event.text.text, text, sizeof event.text.text);
    return event;
}

struct Typing {
    const char* what;
    std::vector<const char*> keys;  // "<BS>" is Backspace pressed and released, anything else typed text
    std::string field;              // what the field holds afterwards
};

TEST(ImGuiKeyboard, KeysThatComeBetweenTwoFramesAllReachTheFieldInOrder) {
    ASSERT_EQ(SDL_Init(SDL_INIT_VIDEO | SDL_INIT_EVENTS), 0) << SDL_GetError();
    const Typing cases[] = {
        {"a wrong entry taken back and typed again", {"1", "2", "x", "<BS>", "<BS>", "<BS>", "4", "2"}, "42"},
        {"backspaces in a row", {"a", "b", "c", "<BS>", "<BS>"}, "a"},
        {"text after a backspace", {"x", "<BS>", "y"}, "y"},
    };
    for (const Typing& c : cases) {
        SCOPED_TRACE(c.what);
        ImGuiSurface surface("keyboard", 0, 0, 320, 120, 0, "", 13.0f, 1.0f);
        ASSERT_TRUE(surface.valid());
        char field[32] = "";
        int frame = 0;
        const auto drawFrame = [&] {
            surface.beginFrame();
            ImGui::SetNextWindowPos(ImVec2(0, 0));
            ImGui::Begin("##keyboard");
            if (frame++ == 0) ImGui::SetKeyboardFocusHere();  // later, it would select the field's text
            ImGui::InputText("##field", field, sizeof field);
            ImGui::End();
            surface.endFrame();
        };
        // The field holds the keyboard before anything is typed.
        while (frame < 2) drawFrame();
        // All of it before another frame is drawn, as a busy machine hands it over.
        const Uint32 id = surface.windowID();
        for (const char* k : c.keys) {
            if (std::string(k) == "<BS>") {
                surface.processEvent(keyEvent(SDL_KEYDOWN, SDL_SCANCODE_BACKSPACE, SDLK_BACKSPACE, id));
                surface.processEvent(keyEvent(SDL_KEYUP, SDL_SCANCODE_BACKSPACE, SDLK_BACKSPACE, id));
            } else {
                surface.processEvent(textEvent(k, id));
            }
        }
        do drawFrame();
        while (surface.keyboardWaiting() && frame < kMostFrames);
        EXPECT_EQ(std::string(field), c.field);
    }
    SDL_Quit();
}

}  // namespace
}  // namespace tolvar
