#include "desktop/BoardNumberDialog.h"

#include <imgui.h>

#include "core/Translate.h"
#include "engine/BoardNumbers.h"

namespace tolvar {

namespace {
constexpr const char* kDialogId = "###boardnumber";  // the title is the player's language's
constexpr float kButtonWidth = 100.0f;
constexpr float kFieldWidth = 220.0f;
const ImVec4 kRefusalColour(0.75f, 0.0f, 0.0f, 1.0f);
}  // namespace

void BoardNumberDialog::open() {
    open_ = opening_ = focusField_ = true;
    text_.fill('\0');
    refusal_.clear();
}

std::optional<std::uint32_t> BoardNumberDialog::draw() {
    if (!open_) return std::nullopt;
    if (opening_) ImGui::OpenPopup(kDialogId);
    const std::string title = std::string(tr("Play Board Number")) + kDialogId;
    const ImGuiIO& io = ImGui::GetIO();
    ImGui::SetNextWindowPos(ImVec2(io.DisplaySize.x / 2, io.DisplaySize.y / 2), ImGuiCond_Always, ImVec2(0.5f, 0.5f));
    const ImGuiWindowFlags flags =
        ImGuiWindowFlags_AlwaysAutoResize | ImGuiWindowFlags_NoMove | ImGuiWindowFlags_NoSavedSettings;
    if (!ImGui::BeginPopupModal(title.c_str(), nullptr, flags)) {
        open_ = opening_;
        return std::nullopt;
    }
    ImGui::TextUnformatted(tr("The same number deals the same board."));
    ImGui::AlignTextToFramePadding();
    ImGui::TextUnformatted(tr("Board number"));
    ImGui::SameLine();
    if (focusField_) ImGui::SetKeyboardFocusHere();
    opening_ = focusField_ = false;
    ImGui::SetNextItemWidth(kFieldWidth);
    bool play = ImGui::InputText("##number", text_.data(), text_.size(), ImGuiInputTextFlags_EnterReturnsTrue);
    if (!refusal_.empty()) {
        ImGui::PushTextWrapPos(kFieldWidth * 2);
        ImGui::TextColored(kRefusalColour, "%s", refusal_.c_str());
        ImGui::PopTextWrapPos();
    }
    ImGui::Spacing();
    play |= ImGui::Button(tr("Play"), ImVec2(kButtonWidth, 0));
    ImGui::SameLine();
    const bool cancel = ImGui::Button(tr("Cancel"), ImVec2(kButtonWidth, 0)) || ImGui::IsKeyPressed(ImGuiKey_Escape);
    std::optional<std::uint32_t> chosen;
    if (play) {
        chosen = parseBoardNumber(text_.data(), &refusal_);
        focusField_ = !chosen;  // another try
    }
    if (chosen || cancel) {
        open_ = false;
        ImGui::CloseCurrentPopup();
    }
    ImGui::EndPopup();
    return chosen;
}

}  // namespace tolvar
