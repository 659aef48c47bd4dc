#include "MainWindow.h"

#include <imgui.h>

namespace tolvar {

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

MainWindow::MainWindow(const std::string& fontFile, float fontPixels)
    : surface_("Tolvar", 60, 60, kWidth, kHeight, SDL_WINDOW_ALLOW_HIGHDPI, fontFile, fontPixels) {}

namespace {

// "line 7, column 26: error: BoardWidth: ..." (the path of keys when the file has no lines).
std::string problemLine(const checker::Problem& p) {
    std::string where = p.at.line > 0 ? "line " + std::to_string(p.at.line) + ", column " + std::to_string(p.at.column)
                                      : p.path;
    if (!where.empty()) where += ": ";
    return where + (p.severity == checker::Severity::Error ? "error: " : "warning: ") +
           (p.key.empty() ? std::string() : p.key + ": ") + p.message;
}

}  // namespace

void MainWindow::drawProblems(const GameLibrary& library, const RulesWatch& rules) {
    const checker::CheckReport& report = rules.report();
    std::vector<checker::Problem> shown = report.fileProblems();
    if (library.currentRules())
        for (checker::Problem& p : report.problemsOf(library.selectedTitle())) shown.push_back(std::move(p));
    if (shown.empty()) return;
    ImGui::Dummy(ImVec2(0, 6));
    ImGui::Separator();
    const bool unreadable = !report.rules.has_value();
    const std::string heading = unreadable ? "The rules file " + rules.path() + " cannot be read:"
                                           : "In " + rules.path() + ":";
    ImGui::TextUnformatted(heading.c_str());
    for (const checker::Problem& p : shown) {
        const bool error = p.severity == checker::Severity::Error;
        ImGui::PushStyleColor(ImGuiCol_Text, error ? ImVec4(0.75f, 0.0f, 0.0f, 1.0f) : ImVec4(0.6f, 0.4f, 0.0f, 1.0f));
        ImGui::TextUnformatted(problemLine(p).c_str());
        ImGui::PopStyleColor();
    }
}

std::vector<ShellCommand> MainWindow::draw(const GameLibrary& library, const ActionsMenu& menu,
                                           bool gameRunning, const RulesWatch& rules) {
    const bool refused = library.currentRules() && rules.refuses(library.selectedTitle());
    std::vector<ShellCommand> commands;
    surface_.beginFrame();
    const ImGuiIO& io = ImGui::GetIO();
    ImGui::SetNextWindowPos(ImVec2(0, 0));
    ImGui::SetNextWindowSize(io.DisplaySize);
    const ImGuiWindowFlags flags = ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoMove |
                                   ImGuiWindowFlags_NoResize | ImGuiWindowFlags_MenuBar |
                                   ImGuiWindowFlags_NoSavedSettings | ImGuiWindowFlags_NoBringToFrontOnFocus;
    ImGui::Begin("##main", nullptr, flags);

    if (ImGui::BeginMenuBar()) {
        if (ImGui::BeginMenu("Tolvar")) {
            if (ImGui::MenuItem("Start Game", nullptr, false, library.currentRules() != nullptr && !refused))
                commands.push_back({ShellCommand::Kind::StartGame, {}, -1});
            if (ImGui::MenuItem("Return to Main Window", "Return", false, gameRunning))
                commands.push_back({ShellCommand::Kind::ReturnToMain, {}, -1});
            ImGui::Separator();
            if (ImGui::MenuItem("Quit", "Ctrl+Q")) commands.push_back({ShellCommand::Kind::Quit, {}, -1});
            ImGui::EndMenu();
        }
        if (ImGui::BeginMenu(menu.title().c_str(), menu.enabled())) {
            for (int i = 0; i < ActionsMenu::kItemCount; ++i) {
                const ActionsMenuItem& item = menu.item(i);
                const std::string shortcut = keyEquivalentLabel(item.keyEquivalent);
                const std::string label = item.title + "##action" + std::to_string(i);
                if (ImGui::MenuItem(label.c_str(), shortcut.empty() ? nullptr : shortcut.c_str(), false,
                                    item.enabled))
                    commands.push_back({ShellCommand::Kind::MenuAction, {}, i});
            }
            ImGui::EndMenu();
        }
        ImGui::EndMenuBar();
    }

    ImGui::Dummy(ImVec2(0, 2));
    ImGui::AlignTextToFramePadding();
    ImGui::TextUnformatted("Game");
    ImGui::SameLine(80);
    ImGui::SetNextItemWidth(ImGui::GetContentRegionAvail().x);
    const std::string& selected = library.selectedTitle();
    if (ImGui::BeginCombo("##game", selected.c_str())) {
        for (const std::string& title : library.gameMenu()) {
            const bool isSelected = title == selected;
            if (ImGui::Selectable(title.c_str(), isSelected))
                commands.push_back({ShellCommand::Kind::SelectGame, title, -1});
            if (isSelected) ImGui::SetItemDefaultFocus();
        }
        ImGui::EndCombo();
    }

    ImGui::Dummy(ImVec2(0, 4));
    const std::string heading = library.currentRules() ? selected : std::string("Choose a game");
    if (surface_.boldFont()) ImGui::PushFont(surface_.boldFont());
    ImGui::TextUnformatted(heading.c_str());
    if (surface_.boldFont()) ImGui::PopFont();

    // The description: read-only, wrapped, scrolling.
    const float buttonsHeight = ImGui::GetFrameHeight() + ImGui::GetStyle().ItemSpacing.y + 8.0f;
    ImGui::PushStyleColor(ImGuiCol_ChildBg, ImVec4(1, 1, 1, 1));
    ImGui::PushStyleVar(ImGuiStyleVar_WindowPadding, ImVec2(12, 10));
    ImGui::BeginChild("##description", ImVec2(0, -buttonsHeight), true, ImGuiWindowFlags_AlwaysUseWindowPadding);
    ImGui::PushTextWrapPos(0.0f);
    ImGui::TextUnformatted(library.descriptionText().c_str());
    drawProblems(library, rules);
    ImGui::PopTextWrapPos();
    ImGui::EndChild();
    ImGui::PopStyleVar();
    ImGui::PopStyleColor();

    // Start and Return sit at the bottom right, as in a dialog.
    const float buttonWidth = 120.0f;
    ImGui::SetCursorPosY(ImGui::GetWindowHeight() - ImGui::GetStyle().WindowPadding.y - ImGui::GetFrameHeight());
    if (refused) {
        ImGui::AlignTextToFramePadding();
        ImGui::TextColored(ImVec4(0.75f, 0.0f, 0.0f, 1.0f), "Fix the errors above to play this game.");
        ImGui::SameLine();
    }
    const float right = ImGui::GetWindowContentRegionMax().x;
    ImGui::SetCursorPosX(right - 2 * buttonWidth - ImGui::GetStyle().ItemSpacing.x);
    if (ImGui::Button("Return", ImVec2(buttonWidth, 0)))
        commands.push_back({ShellCommand::Kind::ReturnToMain, {}, -1});
    ImGui::SameLine();
    ImGui::BeginDisabled(refused);
    if (ImGui::Button("Start", ImVec2(buttonWidth, 0)))
        commands.push_back({ShellCommand::Kind::StartGame, {}, -1});
    ImGui::EndDisabled();

    ImGui::End();
    surface_.endFrame();
    return commands;
}

ActionsPopup::ActionsPopup(const std::string& fontFile, float fontPixels)
    : surface_("Actions", 0, 0, kWidth, kHeight,
               SDL_WINDOW_POPUP_MENU | SDL_WINDOW_BORDERLESS | SDL_WINDOW_SKIP_TASKBAR | SDL_WINDOW_ALWAYS_ON_TOP,
               fontFile, fontPixels) {}

void ActionsPopup::openAt(int x, int y) {
    // Kept whole on the screen: near the right or bottom edge it opens to the left or upward.
    SDL_Rect bounds{0, 0, 0, 0};
    if (SDL_GetDisplayBounds(0, &bounds) == 0 && bounds.w > kWidth && bounds.h > kHeight) {
        if (x + kWidth > bounds.x + bounds.w) x -= kWidth;
        if (y + kHeight > bounds.y + bounds.h) y -= kHeight;
        if (x < bounds.x) x = bounds.x;
        if (y < bounds.y) y = bounds.y;
    }
    SDL_SetWindowPosition(surface_.sdlWindow(), x, y);
    SDL_ShowWindow(surface_.sdlWindow());
    SDL_RaiseWindow(surface_.sdlWindow());
}

void ActionsPopup::close() { surface_.hide(); }

int ActionsPopup::draw(const ActionsMenu& menu) {
    int chosen = -1;
    surface_.beginFrame();
    const ImGuiIO& io = ImGui::GetIO();
    ImGui::SetNextWindowPos(ImVec2(0, 0));
    ImGui::SetNextWindowSize(io.DisplaySize);
    ImGui::PushStyleVar(ImGuiStyleVar_WindowPadding, ImVec2(0, static_cast<float>(kPadding)));
    ImGui::PushStyleVar(ImGuiStyleVar_ItemSpacing, ImVec2(0, 0));
    ImGui::PushStyleVar(ImGuiStyleVar_WindowBorderSize, 1.0f);
    ImGui::Begin("##actions", nullptr,
                 ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoMove | ImGuiWindowFlags_NoSavedSettings);
    const float width = io.DisplaySize.x;
    for (int i = 0; i < ActionsMenu::kItemCount; ++i) {
        const ActionsMenuItem& item = menu.item(i);
        const bool enabled = menu.enabled() && item.enabled;
        ImGui::SetCursorPos(ImVec2(0, static_cast<float>(kPadding + i * kRowHeight)));
        const std::string id = "##item" + std::to_string(i);
        ImGuiSelectableFlags flags = enabled ? 0 : ImGuiSelectableFlags_Disabled;
        if (ImGui::Selectable(id.c_str(), false, flags, ImVec2(width, static_cast<float>(kRowHeight))) && enabled)
            chosen = i;
        const float textY = static_cast<float>(kPadding + i * kRowHeight) +
                            (static_cast<float>(kRowHeight) - ImGui::GetTextLineHeight()) * 0.5f;
        ImGui::PushStyleColor(ImGuiCol_Text, ImGui::GetStyleColorVec4(enabled ? ImGuiCol_Text : ImGuiCol_TextDisabled));
        ImGui::SetCursorPos(ImVec2(16, textY));
        ImGui::TextUnformatted(item.title.c_str());
        const std::string shortcut = keyEquivalentLabel(item.keyEquivalent);
        if (!shortcut.empty()) {
            const float w = ImGui::CalcTextSize(shortcut.c_str()).x;
            ImGui::SetCursorPos(ImVec2(width - 16 - w, textY));
            ImGui::TextUnformatted(shortcut.c_str());
        }
        ImGui::PopStyleColor();
    }
    // Leaving the game, for a player whose main window is hidden.
    const float separatorY = static_cast<float>(kPadding + ActionsMenu::kItemCount * kRowHeight);
    ImGui::SetCursorPos(ImVec2(8, separatorY + kSeparatorHeight / 2.0f));
    ImGui::Separator();
    const float returnY = separatorY + kSeparatorHeight;
    ImGui::SetCursorPos(ImVec2(0, returnY));
    if (ImGui::Selectable("##return", false, 0, ImVec2(width, static_cast<float>(kRowHeight)))) chosen = kReturnToMain;
    ImGui::SetCursorPos(ImVec2(16, returnY + (static_cast<float>(kRowHeight) - ImGui::GetTextLineHeight()) * 0.5f));
    ImGui::TextUnformatted("Return to Main Window");
    const float returnKeyWidth = ImGui::CalcTextSize("Return").x;
    ImGui::SetCursorPos(ImVec2(width - 16 - returnKeyWidth, returnY + (static_cast<float>(kRowHeight) - ImGui::GetTextLineHeight()) * 0.5f));
    ImGui::TextUnformatted("Return");
    ImGui::End();
    ImGui::PopStyleVar(3);
    surface_.endFrame();
    return chosen;
}

}  // namespace tolvar
