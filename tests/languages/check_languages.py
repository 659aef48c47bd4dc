#!/usr/bin/env python3
"""The programs speak the player's language: tolvar-check's help and findings, tolvar-sim's
complaints, under de_DE.UTF-8, fr_FR.UTF-8 and es_ES.UTF-8 from the build tree's catalogues, and
English in the C locale. The findings' places and the sim's transcripts do not change with it.

    check_languages.py TOLVAR_CHECK TOLVAR_SIM
"""
import os
import subprocess
import sys
import tempfile

BROKEN = """<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0">
<dict>
  <key>G</key>
  <dict>
    <key>BoardWidht</key><integer>7</integer>
    <key>GameDescription.de</key><integer>3</integer>
  </dict>
</dict>
</plist>
"""

# locale: words of the help, of the misspelt key's finding, of the description's, of the sim's complaint
EXPECTED = {
    "C": ("Checks rules files", "not a key of a game, so it is ignored; did you mean BoardWidth?",
          "expected a string, found an integer", "unknown option --bogus"),
    "de_DE.UTF-8": ("Prüft Regeldateien", "kein Schlüssel für ein Spiel, daher wird er übergangen; war BoardWidth gemeint?",
                    "erwartet wurde ein Text, gefunden: eine ganze Zahl", "unbekannte Option --bogus"),
    "fr_FR.UTF-8": ("Vérifie des fichiers de règles", "pas une clé pour un jeu, elle est donc ignorée ; vouliez-vous dire BoardWidth ?",
                    "une chaîne était attendue, trouvé : un entier", "option inconnue --bogus"),
    "es_ES.UTF-8": ("Comprueba archivos de reglas", "no es una clave de un juego, así que se ignora; ¿quería decir BoardWidth?",
                    "se esperaba una cadena, se encontró un entero", "opción desconocida --bogus"),
}

failures = []


def check(ok, what):
    if not ok:
        failures.append(what)


def run(program, args, locale, stdin=None):
    env = {k: v for k, v in os.environ.items() if not k.startswith("LC_") and k not in ("LANG", "LANGUAGE")}
    env["LANG"] = locale
    return subprocess.run([program] + args, env=env, capture_output=True, input=stdin, timeout=60)


def main():
    check_program, sim = sys.argv[1], sys.argv[2]
    available = subprocess.run(["locale", "-a"], capture_output=True, text=True).stdout.lower()
    with tempfile.TemporaryDirectory() as folder:
        rules = os.path.join(folder, "broken.dict")
        with open(rules, "w", encoding="utf-8") as f:
            f.write(BROKEN)
        places = {}
        for locale, (help_words, key_words, description_words, sim_words) in EXPECTED.items():
            if locale != "C" and locale.lower().replace("utf-8", "utf8") not in available:
                check(False, f"the locale {locale} is not there (scripts/setup-deps makes it)")
                continue
            shown = run(check_program, ["--help"], locale).stdout.decode()
            check(help_words in shown, f"{locale}: tolvar-check --help says no \"{help_words}\":\n{shown}")
            report = run(check_program, [rules], locale)
            text = report.stdout.decode()
            check(report.returncode == 1, f"{locale}: tolvar-check ends with {report.returncode}, not 1")
            for words in (key_words, description_words):
                check(words in text, f"{locale}: tolvar-check finds no \"{words}\":\n{text}")
            # FILE:LINE:COLUMN: SEVERITY: GAME: KEY: stays as it is in every language.
            places[locale] = [line.split(": ", 4)[:4] for line in text.splitlines()]
            complaint = run(sim, ["--bogus"], locale)
            check(complaint.returncode == 2 and sim_words in complaint.stderr.decode(),
                  f"{locale}: tolvar-sim --bogus says: {complaint.stderr.decode()}")
        for locale, found in places.items():
            check(found == places["C"], f"{locale}: the places of the findings differ from English: {found}")
        check(any(p[3] == "GameDescription.de" and p[0].endswith(":7:34") for p in places.get("C", [])),
              f"the description's finding is not at line 7, column 34: {places.get('C')}")
    for failure in failures:
        print("FAIL:", failure)
    print(f"{len(EXPECTED)} languages checked, {len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
