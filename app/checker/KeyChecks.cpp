#include <algorithm>
#include <array>
#include <string_view>
#include <cctype>
#include <cmath>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "checker/Located.h"
#include "core/Translate.h"
#include "rules/GameDescriptions.h"
#include "rules/TextLimits.h"

namespace tolvar::checker {

Located Located::field(const std::string& name) const {
    Located out;
    out.path = path + "/" + name;
    out.key = name;
    const Dictionary* d = dict();
    out.value = d ? d->find(name) : nullptr;
    out.positions = positions;
    if (positions && node != XmlPositions::kNone && out.value) {
        out.node = positions->valueOf(node, name, &out.keyAt);
        if (out.node != XmlPositions::kNone) out.at = positions->at(out.node);
    }
    if (out.node == XmlPositions::kNone) out.at = out.keyAt = at;
    return out;
}

Located Located::item(std::size_t i) const {
    Located out;
    out.path = path + "/" + std::to_string(i);
    out.key = key;
    const Array* a = array();
    out.value = a && i < a->size() ? &(*a)[i] : nullptr;
    out.positions = positions;
    if (positions && node != XmlPositions::kNone) out.node = positions->item(node, i);
    out.at = out.keyAt = out.node != XmlPositions::kNone ? positions->at(out.node) : at;
    return out;
}

void Reporter::add(Severity severity, const Located& where, const std::string& key, const std::string& message,
                   bool onKey) {
    Problem p;
    p.severity = severity;
    p.at = onKey ? where.keyAt : where.at;
    p.path = where.path;
    p.game = game_;
    p.key = key;
    p.message = message;
    problems_.push_back(std::move(p));
}

std::string kindName(const Value& value) {
    switch (value.kind()) {
        case Value::Kind::Boolean: return tr("a boolean");
        case Value::Kind::Integer: return tr("an integer");
        case Value::Kind::Real: return tr("a real");
        case Value::Kind::String: return tr("a string");
        case Value::Kind::Date: return tr("a date");
        case Value::Kind::Data: return tr("data");
        case Value::Kind::Array: return tr("an array");
        case Value::Kind::Dictionary: return tr("a dictionary");
    }
    return tr("a value");
}

namespace {

using rulekeys::Key;
using rulekeys::Kind;

// Case folded for ASCII letters only: the keys are ASCII, and the locale's tolower (Turkish
// folds 'I' to a dotless i) must not change which key is nearest.
char foldAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Keys are compared for a suggestion only up to this length, and only with keys whose length
// differs by at most kMaxSuggestedEdits: a name further off than that is suggested nothing.
constexpr std::size_t kMaxComparedLength = 64;
constexpr std::size_t kMaxSuggestedEdits = 16;

// Edits (insert, delete, replace, swap of neighbours) from a to b, ignoring ASCII case; both at
// most kMaxComparedLength long, so the table is small and on the stack.
std::size_t editDistance(std::string_view a, std::string_view b) {
    std::array<std::array<std::size_t, kMaxComparedLength + 1>, kMaxComparedLength + 1> d{};
    for (std::size_t i = 0; i <= a.size(); ++i) d[i][0] = i;
    for (std::size_t j = 0; j <= b.size(); ++j) d[0][j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i)
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const char x = foldAscii(a[i - 1]), y = foldAscii(b[j - 1]);
            d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + (x != y)});
            if (i > 1 && j > 1 && x == foldAscii(b[j - 2]) && foldAscii(a[i - 2]) == y)
                d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
        }
    return d[a.size()][b.size()];
}

// "did you mean X?" for the nearest key of the level, or where the key belongs instead.
std::string suggestion(const std::string& name, const rulekeys::Level& level) {
    const Key* best = nullptr;
    std::size_t bestDistance = 0;
    if (name.size() <= kMaxComparedLength) {
        for (const Key& k : level.keys) {
            const std::string_view known = k.name;
            const std::size_t apart = known.size() > name.size() ? known.size() - name.size() : name.size() - known.size();
            if (known.size() > kMaxComparedLength || apart > kMaxSuggestedEdits) continue;
            const std::size_t d = editDistance(name, known);
            if (!best || d < bestDistance) best = &k, bestDistance = d;
        }
    }
    if (best && bestDistance <= std::max<std::size_t>(2, name.size() / 4))
        return trf("; did you mean %s?", best->name);
    for (const rulekeys::Level& other : rulekeys::kLevels)
        if (other.what != level.what && rulekeys::findKey(other.keys, name.c_str()))
            return trf("; it is a key of %s, not of %s", tr(other.what), tr(level.what));
    return "";
}

// The number of characters of a UTF-8 text (bytes that do not continue a character).
std::size_t characterCount(const std::string& s) {
    return static_cast<std::size_t>(
        std::count_if(s.begin(), s.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

// A text longer than its window shows whole.
void checkShownLength(const Located& at, std::size_t limit, Reporter& report) {
    const std::string* text = at.value->asString();
    if (!limit || !text) return;
    const std::size_t length = characterCount(*text);
    if (length > limit)
        report.add(Severity::Warning, at, at.key,
                   trf("the text is %s characters long; the window shows %s at ease, and a longer text is cut or "
                       "scrolled", std::to_string(length), std::to_string(limit)));
}

std::string realText(double d) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.17g", d);
    return buffer;
}

// What the number reading makes of value, judged against what was written.
void checkNumber(const Located& at, const Key& key, Reporter& report) {
    const Value& v = *at.value;
    const std::optional<std::int32_t> read = v.intValue();
    const std::string name = key.name;
    if (!read) {
        report.add(Severity::Error, at, name,
                   trf("expected a number, found %s; the default %s is used", kindName(v),
                       std::to_string(key.fallback)));
        return;
    }
    const std::string readAs = std::to_string(*read);
    if (const std::int64_t* i = v.asInteger(); i && *i != *read) {
        report.add(Severity::Error, at, name,
                   trf("%s is read as %s: a number keeps only its low 32 bits", std::to_string(*i), readAs));
        return;
    }
    if (const double* d = v.asReal()) {
        if (std::isnan(*d) || std::fabs(*d) >= 2147483648.0) {
            report.add(Severity::Error, at, name,
                       trf("%s is read as %s: expected a number from -2147483648 to 2147483647", realText(*d), readAs));
            return;
        }
        if (*d != std::trunc(*d))
            report.add(Severity::Warning, at, name,
                       trf("%s is cut to %s: expected a whole number", realText(*d), readAs));
    }
    if (const std::string* s = v.asString()) {
        std::size_t a = 0, b = s->size();
        while (a < b && std::isspace(static_cast<unsigned char>((*s)[a]))) ++a;
        while (b > a && std::isspace(static_cast<unsigned char>((*s)[b - 1]))) --b;
        const std::size_t digits = a < b && ((*s)[a] == '-' || (*s)[a] == '+') ? a + 1 : a;
        const bool whole = digits < b && std::all_of(s->begin() + static_cast<std::ptrdiff_t>(digits),
                                                      s->begin() + static_cast<std::ptrdiff_t>(b),
                                                      [](char c) { return c >= '0' && c <= '9'; });
        if (!whole) {
            report.add(Severity::Warning, at, name,
                       trf("the text \"%s\" is read as %s: expected a number", *s, readAs));
        } else {
            errno = 0;
            const long long written = std::strtoll(s->c_str() + a, nullptr, 10);
            if (errno == ERANGE || written != *read)
                report.add(Severity::Error, at, name,
                           trf("the text \"%s\" is read as %s: expected a number from -2147483648 to 2147483647",
                               *s, readAs));
        }
    }
    if (key.kind == Kind::Byte && (*read < 0 || *read > 255))
        report.add(Severity::Error, at, name,
                   trf("%s is read as %s: expected a number from 0 to 255", readAs,
                       std::to_string(static_cast<std::uint32_t>(*read) & 0xFFu)));
    if (key.kind == Kind::Character && (*read < -128 || *read > 255))
        report.add(Severity::Error, at, name,
                   trf("%s is read as %s: expected a character code from 1 to 255", readAs,
                       std::to_string(static_cast<std::int8_t>(static_cast<std::uint32_t>(*read) & 0xFFu))));
}

// GameDescription.TAG: a description in the language TAG, a text like GameDescription itself.
void checkDescriptionInLanguage(const Located& at, std::string_view language, Reporter& report) {
    if (!looksLikeLanguageTag(language))
        report.add(Severity::Warning, at, at.key,
                   trf("\"%s\" does not look like a language tag, so no player's language picks this "
                       "description; expected a language such as de, fr, es or pt_BR",
                       std::string(language)),
                   true);
    if (!at.value->isString())
        report.add(Severity::Error, at, at.key,
                   trf("expected a string, found %s; the key counts as absent", kindName(*at.value)));
    checkShownLength(at, textlimits::kGameDescriptionShown, report);
}

}  // namespace

void checkKeys(const Located& dict, const rulekeys::Level& level, Reporter& report) {
    const Dictionary* d = dict.dict();
    if (!d) return;
    for (const auto& [name, value] : d->entries()) {
        const Located at = dict.field(name);
        const Key* key = rulekeys::findKey(level.keys, name.c_str());
        if (const auto language = descriptionLanguage(name); !key && language && level.what == rulekeys::kGameLevel.what) {
            checkDescriptionInLanguage(at, *language, report);
            continue;
        }
        if (!key) {
            report.add(Severity::Warning, at, name,
                       trf("not a key of %s, so it is ignored", tr(level.what)) + suggestion(name, level),
                       true);
            continue;
        }
        switch (key->kind) {
            case Kind::Number:
            case Kind::Byte:
            case Kind::Character:
                checkNumber(at, *key, report);
                break;
            case Kind::String:
                if (!value.isString())
                    report.add(Severity::Error, at, name,
                               trf("expected a string, found %s; the key counts as absent", kindName(value)));
                checkShownLength(at, textlimits::shownLength(key->name), report);
                break;
            case Kind::Array:
                if (!value.isArray())
                    report.add(Severity::Error, at, name,
                               trf("expected an array, found %s; the key counts as absent", kindName(value)));
                break;
            case Kind::Dictionary:
                if (!value.isDictionary())
                    report.add(Severity::Error, at, name,
                               trf("expected a dictionary, found %s; it reads as an empty dictionary", kindName(value)));
                break;
        }
    }
}

}  // namespace tolvar::checker
