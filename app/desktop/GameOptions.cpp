#include "desktop/GameOptions.h"

#include <imgui.h>

#include <algorithm>

#include "core/Translate.h"
#include "engine/GameLimits.h"
#include "rules/RulesDict.h"
#include "rules/RulesKeys.h"

namespace tolvar {

namespace {

constexpr float kLabelColumn = 80.0f;  // where the controls start, as the game pop-up does
constexpr float kNumberWidth = 116.0f;  // the number and its - and + buttons
constexpr int kStep = 1;
constexpr int kFastStep = 5;

// The rules' own board settings, or nothing for rules that are not a dictionary.
std::optional<GameInfo> ownSettings(const Value* rules) {
    const Dictionary* dict = rules ? rules->asDictionary() : nullptr;
    if (!dict) return std::nullopt;
    GameInfo own;
    readGameSettings(*dict, own);
    return own;
}

// A number box for one choice: shown is the value played, within shownRange; the player's value
// is kept within keptRange. Returns true when the player changed it.
bool numberBox(const char* id, std::optional<std::uint8_t>& choice, unsigned played, const ChoiceRange& shownRange,
               const ChoiceRange& keptRange) {
    int value = static_cast<int>(shownRange.clamp(played));
    ImGui::SetNextItemWidth(kNumberWidth);
    if (!ImGui::InputInt(id, &value, kStep, kFastStep)) return false;
    choice = static_cast<std::uint8_t>(keptRange.clamp(static_cast<unsigned>(std::max(value, 0))));
    return true;
}

}  // namespace

GameOptions GameOptionsPanel::optionsFor(const std::string& title, const Value* rules) const {
    const std::optional<GameInfo> own = ownSettings(rules);
    if (!own) return {};
    return optionsDifferingFrom(*own, optionsWithinLimits(*own, remembered(title, *own)));
}

GameOptions GameOptionsPanel::remembered(const std::string& title, const GameInfo& own) const {
    return optionsDifferingFrom(own, optionsFromDictionary(settings_.gameSettings(title)));
}

float GameOptionsPanel::height() { return ImGui::GetFrameHeightWithSpacing(); }

std::optional<FileWriteError> GameOptionsPanel::draw(const std::string& title, const Value* rules) {
    const std::optional<GameInfo> own = ownSettings(rules);
    if (!own) {
        ImGui::Dummy(ImVec2(0, ImGui::GetFrameHeight()));
        return std::nullopt;
    }
    // The choices as remembered (a width the window cannot hold at this height is remembered, and
    // shown and played as the most it holds), and as they will be played.
    GameOptions chosen = remembered(title, *own);
    const GameOptions played = optionsWithinLimits(*own, chosen);
    const auto value = [&](const std::optional<std::uint8_t>& choice, std::uint8_t ownValue) -> unsigned {
        return choice.value_or(ownValue);
    };
    const unsigned height = value(played.boardHeight, own->boardHeight);
    const ChoiceRange anyWidth{1, kMostBoardSide};
    ImGui::AlignTextToFramePadding();
    ImGui::TextUnformatted(tr("Board"));
    ImGui::SameLine(kLabelColumn);
    bool changed = numberBox("##width", chosen.boardWidth, value(played.boardWidth, own->boardWidth),
                             widthRange(*own, height), anyWidth);
    ImGui::SameLine();
    ImGui::TextUnformatted("\xC3\x97");
    ImGui::SameLine();
    changed |= numberBox("##height", chosen.boardHeight, height, heightRange(), heightRange());
    ImGui::SameLine();
    ImGui::TextUnformatted(tr("Colours"));
    ImGui::SameLine();
    const ChoiceRange colours = colorRange(*own);
    changed |= numberBox("##colours", chosen.numColors, value(played.numColors, own->numColors),
                         ChoiceRange{colours.least, std::max<unsigned>(colours.most, own->numColors)}, colours);
    ImGui::SameLine();
    ImGui::BeginDisabled(chosen.empty());
    if (ImGui::Button(tr("Default"))) {
        chosen = GameOptions{};
        changed = true;
    }
    ImGui::EndDisabled();
    return changed ? remember(title, *own, chosen) : std::nullopt;
}

std::optional<FileWriteError> GameOptionsPanel::remember(const std::string& title, const GameInfo& own,
                                                         const GameOptions& chosen) {
    const GameOptions kept = optionsDifferingFrom(own, chosen);
    Dictionary settings = settings_.gameSettings(title);
    if (kept == optionsFromDictionary(settings)) return std::nullopt;
    // The game's other settings stay as they are.
    for (const char* key : {rulekeys::kBoardWidth, rulekeys::kBoardHeight, rulekeys::kNumColors}) settings.erase(key);
    const Dictionary choices = optionsDictionary(kept);
    for (const auto& [key, value] : choices.entries()) settings.set(key, value);
    return settings_.setGameSettings(title, settings);
}

}  // namespace tolvar
