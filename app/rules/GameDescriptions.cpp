#include "rules/GameDescriptions.h"

#include <algorithm>

#include "rules/RulesKeys.h"

namespace tolvar {

namespace {

constexpr std::size_t kMinLanguageLetters = 2, kMaxLanguageLetters = 3;
constexpr std::size_t kMinSubtagLength = 2, kMaxSubtagLength = 8;

bool isAsciiLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isAsciiDigit(char c) { return c >= '0' && c <= '9'; }
bool isSeparator(char c) { return c == '-' || c == '_'; }

char folded(char c) {
    if (c >= 'A' && c <= 'Z') return static_cast<char>(c - 'A' + 'a');
    return c == '-' ? '_' : c;
}

// Whether two tags name the same language: "pt-BR" is "pt_br".
bool sameTag(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return folded(x) == folded(y); });
}

}  // namespace

std::optional<std::string_view> descriptionLanguage(std::string_view key) {
    if (!key.starts_with(kDescriptionKeyPrefix)) return std::nullopt;
    return key.substr(kDescriptionKeyPrefix.size());
}

bool looksLikeLanguageTag(std::string_view tag) {
    std::size_t i = 0;
    while (i < tag.size() && isAsciiLetter(tag[i])) ++i;
    if (i < kMinLanguageLetters || i > kMaxLanguageLetters) return false;
    while (i < tag.size()) {
        if (!isSeparator(tag[i])) return false;
        const std::size_t start = ++i;
        while (i < tag.size() && (isAsciiLetter(tag[i]) || isAsciiDigit(tag[i]))) ++i;
        if (i - start < kMinSubtagLength || i - start > kMaxSubtagLength) return false;
    }
    return true;
}

std::vector<Description> gameDescriptions(const Dictionary& rules) {
    std::vector<Description> out;
    for (const auto& [key, value] : rules.entries()) {
        const std::string* text = value.asString();
        if (!text) continue;
        if (key == rulekeys::kGameDescription) out.push_back({"", *text});
        else if (const auto language = descriptionLanguage(key)) out.push_back({std::string(*language), *text});
    }
    return out;
}

const Description* descriptionFor(const std::vector<Description>& descriptions, std::string_view locale) {
    // "de_AT.UTF-8@euro": the language and territory end at the character set or the modifier.
    const std::string_view territorial = locale.substr(0, locale.find_first_of(".@"));
    const std::string_view language = territorial.substr(0, territorial.find('_'));
    auto tagged = [&](std::string_view tag) -> const Description* {
        const auto found = std::find_if(descriptions.begin(), descriptions.end(),
                                        [&](const Description& d) { return sameTag(d.language, tag); });
        return found == descriptions.end() ? nullptr : &*found;
    };
    const Description* plain = tagged("");
    // "C" and "POSIX" are no language.
    if (!looksLikeLanguageTag(language)) return plain;
    if (const Description* d = tagged(territorial)) return d;
    if (const Description* d = tagged(language)) return d;
    return plain;
}

}  // namespace tolvar
