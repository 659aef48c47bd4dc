#include "desktop/ImGuiSurface.h"

#include <imgui.h>
#include <backends/imgui_impl_sdl.h>
#include <backends/imgui_impl_sdlrenderer.h>

#include <cmath>
#include <cstdio>
#include <set>

#include "desktop/WindowPlacement.h"

namespace tolvar {

namespace {
// The colour behind the windows' pages, as the style's window background.
constexpr SDL_Color kPageColour{240, 240, 242, 255};
}  // namespace

ImGuiSurface::ImGuiSurface(const std::string& title, int x, int y, int width, int height, Uint32 flags,
                           const std::string& fontFile, float fontPixels, float scale)
    : scale_(scale) {
    const auto scaled = [scale](int v) { return static_cast<int>(std::lround(static_cast<float>(v) * scale)); };
    window_.reset(SDL_CreateWindow(title.c_str(), scaled(x), scaled(y), scaled(width), scaled(height),
                                   SDL_WINDOW_HIDDEN | flags));
    if (!window_) {
        std::fprintf(stderr, "tolvar: could not make the window \"%s\": %s\n", title.c_str(), SDL_GetError());
        return;
    }
    // Pages of text and buttons need no OpenGL: drawn in software, the window shows without the
    // graphics driver being loaded and compiled for, and keeps none of its buffers. The software
    // renderer's picture goes to the window as an X image: left to itself, SDL would hand it to the
    // window through an OpenGL context and texture of its own (about 20 MiB and the driver's loading
    // before the first frame). SDL_FRAMEBUFFER_ACCELERATION in the environment still decides.
    SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
    renderer_.reset(SDL_CreateRenderer(window_.get(), -1, SDL_RENDERER_SOFTWARE));
    if (!renderer_) {
        std::fprintf(stderr, "tolvar: could not make the renderer of \"%s\": %s\n", title.c_str(), SDL_GetError());
        return;
    }

    ImGuiContext* previous = ImGui::GetCurrentContext();
    imgui_ = ImGui::CreateContext();
    ImGui::SetCurrentContext(imgui_);
    ImGuiIO& io = ImGui::GetIO();
    io.IniFilename = nullptr;
    io.LogFilename = nullptr;
    fontPixels *= scale;
    if (!fontFile.empty()) {
        // Latin-1 and the general punctuation ("…", dashes and quotes that descriptions use).
        static const ImWchar kGlyphs[] = {0x0020, 0x00FF, 0x2000, 0x206F, 0};
        // Glyphs at the size they are drawn: the software renderer samples the atlas texel for
        // pixel, so a finer atlas would only be larger (four times at 2 x 2), not smoother.
        ImFontConfig config;
        config.OversampleH = 1;
        config.OversampleV = 1;
        config.GlyphRanges = kGlyphs;
        if (io.Fonts->AddFontFromFileTTF(fontFile.c_str(), fontPixels, &config)) interfaceFont_ = true;
        // A larger face of the same family for headings.
        std::string bold = fontFile;
        const auto dot = bold.rfind(".ttf");
        if (dot != std::string::npos) bold.insert(dot, "-Bold");
        FILE* probe = std::fopen(bold.c_str(), "rb");
        if (probe) {
            std::fclose(probe);
            boldFont_ = io.Fonts->AddFontFromFileTTF(bold.c_str(), fontPixels * 1.3f, &config);
        } else if (interfaceFont_) {
            boldFont_ = io.Fonts->AddFontFromFileTTF(fontFile.c_str(), fontPixels * 1.3f, &config);
        }
    }
    if (!interfaceFont_) io.Fonts->AddFontDefault();

    ImGuiStyle& style = ImGui::GetStyle();
    ImGui::StyleColorsLight(&style);
    style.WindowPadding = ImVec2(16, 14);
    style.FramePadding = ImVec2(10, 6);
    style.ItemSpacing = ImVec2(10, 10);
    style.ItemInnerSpacing = ImVec2(8, 6);
    style.FrameRounding = 4.0f;
    style.PopupRounding = 4.0f;
    style.GrabRounding = 4.0f;
    style.ScrollbarSize = 14.0f;
    style.WindowBorderSize = 0.0f;
    style.FrameBorderSize = 1.0f;
    style.PopupBorderSize = 1.0f;
    style.ScaleAllSizes(scale);
    style.Colors[ImGuiCol_WindowBg] = ImVec4(0.94f, 0.94f, 0.95f, 1.0f);
    style.Colors[ImGuiCol_PopupBg] = ImVec4(1.0f, 1.0f, 1.0f, 1.0f);  // menus hide what lies below
    style.Colors[ImGuiCol_MenuBarBg] = ImVec4(0.88f, 0.88f, 0.90f, 1.0f);
    style.Colors[ImGuiCol_Button] = ImVec4(0.98f, 0.98f, 0.99f, 1.0f);
    style.Colors[ImGuiCol_ButtonHovered] = ImVec4(0.80f, 0.87f, 0.97f, 1.0f);
    style.Colors[ImGuiCol_ButtonActive] = ImVec4(0.62f, 0.76f, 0.95f, 1.0f);

    ImGui_ImplSDL2_InitForSDLRenderer(window_.get());
    ImGui_ImplSDLRenderer_Init(renderer_.get());
    if (previous) ImGui::SetCurrentContext(previous);
}

ImGuiSurface::~ImGuiSurface() {
    if (imgui_) {
        ImGui::SetCurrentContext(imgui_);
        ImGui_ImplSDLRenderer_Shutdown();  // the font's texture goes with the renderer still there
        ImGui_ImplSDL2_Shutdown();
        ImGui::DestroyContext(imgui_);
        imgui_ = nullptr;
    }
    renderer_.reset();
    window_.reset();
}

Uint32 ImGuiSurface::windowID() const { return window_ ? SDL_GetWindowID(window_.get()) : 0; }

bool ImGuiSurface::isVisible() const {
    return window_ && (SDL_GetWindowFlags(window_.get()) & SDL_WINDOW_SHOWN) != 0;
}

bool ImGuiSurface::processEvent(const SDL_Event& event) {
    if (!valid()) return false;
    switch (event.type) {
        case SDL_MOUSEMOTION:
            mouseX_ = static_cast<float>(event.motion.x);
            mouseY_ = static_cast<float>(event.motion.y);
            return true;
        case SDL_MOUSEBUTTONDOWN:
        case SDL_MOUSEBUTTONUP: {
            mouseX_ = static_cast<float>(event.button.x);
            mouseY_ = static_cast<float>(event.button.y);
            int b = event.button.button == SDL_BUTTON_LEFT    ? 0
                    : event.button.button == SDL_BUTTON_RIGHT ? 1
                    : event.button.button == SDL_BUTTON_MIDDLE ? 2
                                                               : -1;
            if (b >= 0) {
                buttonDown_[b] = event.type == SDL_MOUSEBUTTONDOWN;
                if (buttonDown_[b]) buttonClicked_[b] = true;
            }
            return true;
        }
        case SDL_KEYDOWN:
        case SDL_KEYUP:
        case SDL_TEXTINPUT:
            keyboard_.push_back(event);
            return true;
        case SDL_WINDOWEVENT:
            if (placing_ && framed(window_.get())) {
                placing_ = false;
                keepInsideUsableArea(window_.get(), kMinimumWidth, kMinimumHeight);
            }
            if (event.window.event == SDL_WINDOWEVENT_LEAVE) {
                mouseX_ = mouseY_ = -1.0e30f;
            }
            break;
        default:
            break;
    }
    ImGuiContext* previous = ImGui::GetCurrentContext();
    ImGui::SetCurrentContext(imgui_);
    ImGui_ImplSDL2_ProcessEvent(&event);
    ImGui::SetCurrentContext(previous);
    return true;
}

void ImGuiSurface::feedKeyboard() {
    std::set<SDL_Scancode> pressed, released;
    bool typed = false;  // a key press or a text given to this frame
    while (!keyboard_.empty()) {
        SDL_Event& event = keyboard_.front();
        if (event.type == SDL_KEYUP) {
            if (pressed.count(event.key.keysym.scancode) != 0) break;
            released.insert(event.key.keysym.scancode);
        } else {
            if (typed) break;
            if (event.type == SDL_KEYDOWN && released.count(event.key.keysym.scancode) != 0) break;
            if (event.type == SDL_KEYDOWN) pressed.insert(event.key.keysym.scancode);
            typed = true;
        }
        ImGui_ImplSDL2_ProcessEvent(&event);
        keyboard_.pop_front();
    }
}

void ImGuiSurface::beginFrame() {
    ImGui::SetCurrentContext(imgui_);
    feedKeyboard();
    ImGui_ImplSDLRenderer_NewFrame();
    ImGui_ImplSDL2_NewFrame();
    // The mouse as this window's own events left it, focused or not.
    ImGuiIO& io = ImGui::GetIO();
    io.MousePos = ImVec2(mouseX_, mouseY_);
    for (int b = 0; b < 3; ++b) {
        io.MouseDown[b] = buttonDown_[b] || buttonClicked_[b];
        buttonClicked_[b] = false;
    }
    ImGui::NewFrame();
}

void ImGuiSurface::endFrame() {
    ImGui::Render();
    SDL_SetRenderDrawColor(renderer_.get(), kPageColour.r, kPageColour.g, kPageColour.b, kPageColour.a);
    SDL_RenderClear(renderer_.get());
    ImGui_ImplSDLRenderer_RenderDrawData(ImGui::GetDrawData());
    // The font's pixels live on in the texture made for the first frame; neither they nor the
    // font files the atlas was made from are needed again.
    ImGui::GetIO().Fonts->ClearTexData();
    ImGui::GetIO().Fonts->ClearInputData();
    SDL_RenderPresent(renderer_.get());
}

void ImGuiSurface::show() {
    if (!window_) return;
    SDL_ShowWindow(window_.get());
    // Inside the usable area with its frame: on a small screen, smaller, its page scrolling. A
    // window manager tells the frame once it has put the window up: placed again then.
    keepInsideUsableArea(window_.get(), kMinimumWidth, kMinimumHeight);
    placing_ = windowManagerRuns(window_.get());
    SDL_RaiseWindow(window_.get());
    SDL_SetWindowInputFocus(window_.get());
}

void ImGuiSurface::hide() {
    if (window_) SDL_HideWindow(window_.get());
}

}  // namespace tolvar
