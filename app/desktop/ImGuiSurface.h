// A window drawn with Dear ImGui: its own SDL window, drawn by SDL's renderer (no OpenGL: the
// software renderer unless SDL_RENDER_DRIVER names another), ImGui context and interface font. Mouse
// input is tracked per window from the window's own events, so the window answers clicks whether or
// not it holds the keyboard.
#pragma once

#include <SDL.h>

#include <deque>
#include <memory>
#include <string>

#include "desktop/SdlHandles.h"

struct ImGuiContext;
struct ImFont;

namespace tolvar {

class ImGuiSurface {
public:
    // flags: extra SDL window flags (SDL_WINDOW_POPUP_MENU, ...). The window starts hidden.
    // scale: the display's density (desktop/DisplayScale); the place, the size, the font and the
    // spacing given for a 1080-line screen are multiplied by it.
    ImGuiSurface(const std::string& title, int x, int y, int width, int height, Uint32 flags,
                 const std::string& fontFile, float fontPixels, float scale);
    ~ImGuiSurface();
    ImGuiSurface(const ImGuiSurface&) = delete;
    ImGuiSurface& operator=(const ImGuiSurface&) = delete;

    bool valid() const { return window_ && renderer_ && imgui_; }
    SDL_Window* sdlWindow() const { return window_.get(); }
    Uint32 windowID() const;
    bool isVisible() const;
    bool usesInterfaceFont() const { return interfaceFont_; }
    ImFont* boldFont() const { return boldFont_; }
    // What sizes given for a 1080-line screen are multiplied by in this window.
    float scale() const { return scale_; }

    // Feeds an event of this window to ImGui. Returns true when the window should be redrawn.
    bool processEvent(const SDL_Event& event);
    // Keys and typed text wait in order for the frames that take them (see feedKeyboard): while
    // some wait, the window needs another frame.
    bool keyboardWaiting() const { return !keyboard_.empty(); }

    // Makes this window's ImGui context current and starts a frame; endFrame renders and shows it.
    void beginFrame();
    void endFrame();

    // show: shown inside the usable area of its display (moved, or made smaller, to fit), raised
    // and given the keyboard.
    void show();
    void hide();

    static constexpr int kMinimumWidth = 320;
    static constexpr int kMinimumHeight = 240;

private:
    SdlWindowPtr window_;
    SdlRendererPtr renderer_;
    ImGuiContext* imgui_ = nullptr;  // owned: destroyed with ImGui::DestroyContext
    float scale_ = 1.0f;
    bool interfaceFont_ = false;
    ImFont* boldFont_ = nullptr;
    bool placing_ = false;  // shown, and the window manager has not yet told its frame
    // Mouse state from this window's events.
    float mouseX_ = -1.0e30f, mouseY_ = -1.0e30f;
    bool buttonDown_[3] = {false, false, false};
    bool buttonClicked_[3] = {false, false, false};  // pressed since the last frame
    // A frame sees each key as down or up, so a key pressed and released between two frames (a
    // quick typist, a busy machine) would never be seen: the keyboard's events are given to the
    // frames in order, at most one key press or typed text a frame, and a release in the frame
    // after its press.
    void feedKeyboard();
    std::deque<SDL_Event> keyboard_;
};

}  // namespace tolvar
