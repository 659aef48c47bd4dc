// The program's own texts in the player's language, through gettext's catalogues of the text
// domain "tolvar" (po/). The game's own texts (transcripts, diagnostics, what a rules file says)
// are never translated.
//
// tr("text") gives the translation of a text; trn("one", "many", n) the form for a number n; N_("text") marks a text of a static table for the
// catalogue, translated where it is shown with tr(); trf("... %s ...", args) translates a pattern
// and fills its %s in with texts, as printf does (a translation may reorder them with %1$s, %2$s).
// Numbers go in as texts (std::to_string): a pattern has no other conversion than %s, so no
// translation can read an argument as what it is not.
#pragma once

#include <libintl.h>

#include <cstdio>
#include <string>

#define N_(text) text

namespace tolvar {

inline constexpr const char* kTextDomain = "tolvar";

inline const char* tr(const char* text) { return dgettext(kTextDomain, text); }

// The form of a word that goes with the number n in the player's language ("1 point", "2 points").
inline const char* trn(const char* singular, const char* plural, unsigned long n) {
    return dngettext(kTextDomain, singular, plural, n);
}

namespace detail {
inline const char* printfArgument(const std::string& text) { return text.c_str(); }
inline const char* printfArgument(const char* text) { return text; }
}  // namespace detail

template <typename... Args>
std::string trf(const char* pattern, const Args&... args) {
    static_assert(sizeof...(Args) > 0, "trf fills a pattern in; a text alone goes through tr");
    const char* translated = tr(pattern);
    const int size = std::snprintf(nullptr, 0, translated, detail::printfArgument(args)...);
    if (size < 0) return translated;
    std::string out(static_cast<std::size_t>(size), '\0');
    std::snprintf(out.data(), out.size() + 1, translated, detail::printfArgument(args)...);
    return out;
}

// At a program's start: the player's locale (LC_ALL from the environment) for everything but
// numbers, which stay in the C locale so that files, transcripts and the numbers read from
// scripts and models are the same in every language; and the catalogues' folder bound to the
// text domain (see localeFolder).
void startInPlayersLanguage();

// Where the catalogues are (LL/LC_MESSAGES/tolvar.mo below it): $TOLVAR_LOCALEDIR when set, else
// locale/ beside the program (the build tree), else ../share/locale beside it (an installed game).
std::string localeFolder();

// The locale the program's messages are in, as setlocale names it ("de_DE.UTF-8", or "C").
std::string messagesLocale();

}  // namespace tolvar
