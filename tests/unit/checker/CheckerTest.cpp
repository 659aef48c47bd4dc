// The rules checker: one broken game per kind of problem, with the line, the column, the key and
// the words of the finding; XML that is not well formed; the built-in games check clean. (The
// printed lines and JSON: the hostile-file suite, through the program.)
#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <vector>

#include "checker/RulesChecker.h"
#include "core/PlistFile.h"
#include "rules/BuiltinGames.h"

using namespace tolvar;
using namespace tolvar::checker;

namespace {

// A clean game; each case below replaces some of its lines. Line numbers are the file's.
std::vector<std::string> cleanFile() {
    return {
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>",  // 1
        "<plist version=\"1.0\">",                    // 2
        "<dict>",                                     // 3
        "  <key>G</key>",                             // 4
        "  <dict>",                                   // 5
        "    <key>GameName</key><string>G</string>",  // 6
        "    <key>SupportedEvents</key><array>",      // 7
        "      <dict><key>EventType</key><integer>8</integer><key>ActionList</key><array><dict><key>ActionType</key><integer>21</integer></dict></array></dict>",
        "      <dict><key>EventType</key><integer>11</integer><key>ActionList</key><array><dict><key>ActionType</key><integer>22</integer></dict></array></dict>",
        "      <dict><key>EventType</key><integer>12</integer><key>ActionList</key><array><dict><key>ActionType</key><integer>21</integer></dict></array></dict>",
        "",                                           // 11: another event
        "    </array>",                               // 12
        "    <key>SupportedUserEvents</key><array>",  // 13
        "      <dict><key>UserEventID</key><integer>1</integer><key>UserEventType</key><integer>4</integer></dict>",
        "      <dict><key>UserEventID</key><integer>2</integer><key>UserEventType</key><integer>9</integer><key>UserEventCharacter</key><integer>32</integer></dict>",
        "",                                           // 16: another user event
        "    </array>",                               // 17
        "    <key>CompletionCriteria</key><array><dict><key>CompletionType</key><integer>7</integer></dict></array>",
        "",                                           // 19: more game keys
        "  </dict>",                                  // 20
        "</dict>",                                    // 21
        "</plist>",                                   // 22
    };
}

std::string join(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += line + "\n";
    return text;
}

std::string describe(const std::vector<Problem>& problems) {
    std::string out;
    for (const Problem& p : problems) out += "\n  " + formatProblem("f", p);
    return out;
}

struct Finding {
    const char* name;
    std::vector<std::pair<int, std::string>> replace;  // line number, new text
    int line;
    const char* at;  // the finding's column is where this text starts on its line
    const char* key;
    Severity severity;
    const char* words;
};

const Finding kFindings[] = {
    // Keys the engine does not know, at every level.
    {"misspelt game key", {{19, "<key>BoardWidht</key><integer>7</integer>"}}, 19, "<key>BoardWidht", "BoardWidht",
     Severity::Warning, "not a key of a game, so it is ignored; did you mean BoardWidth?"},
    {"misspelt event key", {{11, "<dict><key>EventType</key><integer>8</integer><key>Actionlist</key><array/></dict>"}},
     11, "<key>Actionlist", "Actionlist", Severity::Warning, "not a key of an event, so it is ignored; did you mean ActionList?"},
    {"action key in an event", {{11, "<dict><key>EventType</key><integer>8</integer><key>ActionType</key><integer>1</integer></dict>"}},
     11, "<key>ActionType", "ActionType", Severity::Warning, "it is a key of an action, not of an event"},
    // Values of the wrong kind.
    {"colours as an array", {{19, "<key>NumColors</key><array><integer>3</integer></array>"}}, 19, "<array>", "NumColors",
     Severity::Error, "expected a number, found an array; the default 4 is used"},
    {"name as a number", {{6, "<key>GameName</key><integer>3</integer>"}}, 6, "<integer>", "GameName", Severity::Error,
     "expected a string, found an integer; the key counts as absent"},
    {"action list as a dictionary", {{11, "<dict><key>EventType</key><integer>8</integer><key>ActionList</key><dict/></dict>"}},
     11, "<dict/>", "ActionList", Severity::Error, "expected an array, found a dictionary; the key counts as absent"},
    {"event entry as a string", {{11, "<string>x</string>"}}, 11, "<string>", "SupportedEvents", Severity::Error,
     "an entry is a string, expected a dictionary for an event"},
    // Values the engine would wrap or cut.
    {"width wraps", {{19, "<key>BoardWidth</key><integer>300</integer>"}}, 19, "<integer>", "BoardWidth", Severity::Error,
     "300 is read as 44: expected a number from 0 to 255"},
    {"number past 32 bits", {{19, "<key>ScoreMultiplier</key><integer>4294967298</integer>"}}, 19, "<integer>",
     "ScoreMultiplier", Severity::Error, "4294967298 is read as 2: a number keeps only its low 32 bits"},
    {"real cut", {{19, "<key>ScoreMultiplier</key><real>2.5</real>"}}, 19, "<real>", "ScoreMultiplier",
     Severity::Warning, "2.5 is cut to 2: expected a whole number"},
    {"text read in part", {{19, "<key>NumColors</key><string>3 colours</string>"}}, 19, "<string>", "NumColors",
     Severity::Warning, "the text \"3 colours\" is read as 3: expected a number"},
    // Texts longer than the windows show at ease.
    {"long name", {{6, "<key>GameName</key><string>" + std::string(61, 'N') + "</string>"}}, 6, "<string>", "GameName",
     Severity::Warning, "the text is 61 characters long; the window shows 60 at ease"},
    // Descriptions in a language: a text, under a tag that looks like a language.
    {"description in a language as a number", {{6, "<key>GameDescription.de</key><integer>3</integer>"}}, 6, "<integer>",
     "GameDescription.de", Severity::Error, "expected a string, found an integer; the key counts as absent"},
    {"description under a word", {{6, "<key>GameDescription.deutsch</key><string>Spiel</string>"}}, 6,
     "<key>GameDescription.deutsch", "GameDescription.deutsch", Severity::Warning,
     "\"deutsch\" does not look like a language tag"},
    {"description under no tag", {{6, "<key>GameDescription.</key><string>x</string>"}}, 6, "<key>GameDescription.",
     "GameDescription.", Severity::Warning, "\"\" does not look like a language tag"},
    {"long description in a language", {{6, "<key>GameDescription.fr</key><string>" + std::string(4001, 'd') + "</string>"}},
     6, "<string>", "GameDescription.fr", Severity::Warning, "the text is 4001 characters long; the window shows 4000"},
    {"language tag on another level", {{11, "<dict><key>EventType</key><integer>8</integer><key>GameDescription.de</key><string>x</string></dict>"}},
     11, "<key>GameDescription.de", "GameDescription.de", Severity::Warning, "not a key of an event, so it is ignored"},
    {"long alert", {{11, "<dict><key>EventType</key><integer>8</integer><key>ActionList</key><array><dict><key>ActionType</key><integer>21</integer><key>Message</key><string>" + std::string(1001, 'm') + "</string></dict></array></dict>"}},
     11, "<string>", "Message", Severity::Warning, "the text is 1001 characters long; the window shows 1000 at ease"},
    // Types the engine does not know.
    {"event type", {{11, "<dict><key>EventType</key><integer>13</integer></dict>"}}, 11, "<integer>13", "EventType",
     Severity::Error, "EventType 13 is not an event the engine raises, so this event never runs"},
    {"action type", {{11, "<dict><key>EventType</key><integer>8</integer><key>ActionList</key><array><dict><key>ActionType</key><integer>24</integer></dict></array></dict>"}},
     11, "<integer>24", "ActionType", Severity::Error, "ActionType 24 is not an action the engine knows"},
    {"idle action type", {{11, "<dict><key>EventType</key><integer>8</integer><key>ActionList</key><array><dict><key>ActionType</key><integer>5</integer></dict></array></dict>"}},
     11, "<integer>5", "ActionType", Severity::Warning, "ActionType 5 does nothing"},
    {"user-event type", {{16, "<dict><key>UserEventType</key><integer>12</integer><key>UserEventCharacter</key><integer>65</integer></dict>"}},
     16, "<integer>12", "UserEventType", Severity::Error, "UserEventType 12 is not a user event the engine knows; expected 1 to 10"},
    {"completion type", {{18, "<key>CompletionCriteria</key><array><dict><key>CompletionType</key><integer>3</integer></dict></array>"}},
     18, "<integer>3", "CompletionType", Severity::Warning, "CompletionType 3 is skipped by the completion test"},
    // Events nothing queues, inputs that reach nothing.
    {"removal event without removals", {{15, "<dict><key>UserEventType</key><integer>1</integer><key>UserEventCharacter</key><integer>32</integer></dict>"}},
     10, "<integer>12", "EventType", Severity::Warning, "nothing ever queues this event of type 12 and its 1 actions"},
    {"a shadowed event", {{11, "<dict><key>EventID</key><integer>9</integer><key>EventType</key><integer>8</integer></dict>"}},
     8, "<integer>8", "EventType", Severity::Warning, "listed after this one (EventID 9) runs in its place"},
    {"second keyless click", {{16, "<dict><key>UserEventID</key><integer>7</integer><key>UserEventType</key><integer>3</integer></dict>"}},
     14, "<dict>", "UserEventCharacter", Severity::Warning,
     "no input reaches this user event: the mouse goes to the click or drag user event listed after it (UserEventID 7)"},
    {"one key, two user events", {{16, "<dict><key>UserEventID</key><integer>8</integer><key>UserEventType</key><integer>1</integer><key>UserEventCharacter</key><integer>32</integer></dict>"}},
     15, "<integer>32", "UserEventCharacter", Severity::Warning,
     "the key the space bar (32) is also bound to the user event listed after this one (UserEventID 8)"},
    // Boards and colours.
    {"square board off the window", {{19, "<key>SquareShapes</key><integer>1</integer><key>BoardWidth</key><integer>40</integer>"}},
     19, "<integer>40", "BoardWidth", Severity::Warning, "the board runs off the window; expected at most 6 columns"},
    {"colours past the drawn ones", {{19, "<key>NumColors</key><integer>11</integer>"}}, 19, "<integer>", "NumColors",
     Severity::Warning, "the board draws only 10"},
    {"unplayable board", {{19, "<key>BoardHeight</key><integer>0</integer>"}}, 19, "<integer>", "BoardHeight",
     Severity::Error, "the game cannot be played: \"BoardHeight\" is 0"},
    // Loops and games without end.
    {"no-move event tests again", {{9, "<dict><key>EventType</key><integer>11</integer><key>ActionList</key><array><dict><key>ActionType</key><integer>21</integer></dict></array></dict>"}},
     9, "<integer>21", "ActionType", Severity::Error, "the events queue each other without end"},
    {"no end event", {{9, ""}}, 7, "<array>", "SupportedEvents", Severity::Warning,
     "the game never ends: there is no event of type 11"},
    {"no completion test", {{8, "<dict><key>EventType</key><integer>8</integer></dict>"}, {10, "<dict><key>EventType</key><integer>12</integer></dict>"}},
     9, "<integer>11", "EventType", Severity::Warning, "so the game never ends"},
};

class CheckerFindings : public ::testing::TestWithParam<Finding> {};

TEST_P(CheckerFindings, PointAtTheLineColumnAndKeyWithTheirWords) {
    const Finding& f = GetParam();
    std::vector<std::string> lines = cleanFile();
    for (const auto& [line, text] : f.replace) lines[static_cast<std::size_t>(line - 1)] = text;
    const CheckReport report = checkRulesText(join(lines));
    const std::string& lineText = lines[static_cast<std::size_t>(f.line - 1)];
    const int column = static_cast<int>(lineText.find(f.at)) + 1;
    ASSERT_GT(column, 0) << f.at;
    const auto match = std::find_if(report.problems.begin(), report.problems.end(), [&](const Problem& p) {
        return p.key == f.key && p.message.find(f.words) != std::string::npos;
    });
    ASSERT_NE(match, report.problems.end()) << "no \"" << f.words << "\" among:" << describe(report.problems);
    EXPECT_EQ(match->at.line, f.line) << describe(report.problems);
    EXPECT_EQ(match->at.column, column) << describe(report.problems);
    EXPECT_EQ(match->severity, f.severity);
    EXPECT_EQ(match->game, "G");
    EXPECT_EQ(report.hasErrors(), f.severity == Severity::Error || [&] {
        return std::any_of(report.problems.begin(), report.problems.end(),
                           [](const Problem& p) { return p.severity == Severity::Error; });
    }());
}

INSTANTIATE_TEST_SUITE_P(EveryKind, CheckerFindings, ::testing::ValuesIn(kFindings),
                         [](const ::testing::TestParamInfo<Finding>& info) {
                             std::string name = info.param.name;
                             std::replace_if(name.begin(), name.end(), [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
                             return name;
                         });

TEST(CheckerClean, TheCleanGameAndTheBuiltInGamesHaveNoProblem) {
    EXPECT_TRUE(checkRulesText(join(cleanFile())).problems.empty()) << describe(checkRulesText(join(cleanFile())).problems);
    // Descriptions in languages with and without a territory, in either spelling.
    std::vector<std::string> described = cleanFile();
    described[5] += "<key>GameDescription.de</key><string>Ein Spiel</string><key>GameDescription.pt-BR</key>"
                    "<string>Um jogo</string><key>GameDescription.zh_Hant</key><string>x</string>";
    EXPECT_TRUE(checkRulesText(join(described)).problems.empty()) << describe(checkRulesText(join(described)).problems);
    for (const Value& game : {createTestGameOne(), createTestGameTwo(), createTestGameThree()}) {
        Dictionary file;
        file.set("Game", game);
        const CheckReport report = checkRulesText(toXmlPropertyList(Value::dictionary(file)));
        EXPECT_TRUE(report.problems.empty()) << describe(report.problems);
        EXPECT_TRUE(report.rules.has_value());
    }
}

struct Malformed {
    const char* text;
    int line, column;
    const char* words;
};

const Malformed kMalformed[] = {
    {"<plist>\n<dict>\n<key>a</key>\n<array>\n</dict>\n</plist>\n", 5, 1,
     "the end tag </dict> where </array> closes <array> opened at line 4, column 1"},
    {"<plist>\n<dict>\n  <key>a</key>\n", 4, 1, "the text ends before the end tag of <dict> opened at line 2, column 1"},
    {"<plist>\n<!-- a note\n<dict/></plist>", 2, 1, "a comment is never closed"},
    {"<plist>\n<dict>\n  <integer>1</integer>\n</dict></plist>", 3, 3, "a value without a <key> before it in <dict>"},
    {"<plist>\n<array>\n  <number>1</number>\n</array></plist>", 3, 3, "an unknown element <number>"},
    {"<plist>\n<array> <string>a &bogus; b</string></array></plist>", 2, 19, "an unknown entity &bogus;"},
    {"<plist>\n<array>\n  words\n</array></plist>", 3, 3, "text where an element is expected"},
    {"<plist>\n<array><string>a<b/></string></array></plist>", 2, 17, "an element inside <string>"},
};

class CheckerMalformed : public ::testing::TestWithParam<Malformed> {};

TEST_P(CheckerMalformed, SaysWhereTheTextGoesWrong) {
    const CheckReport report = checkRulesText(GetParam().text);
    ASSERT_EQ(report.problems.size(), 1u) << describe(report.problems);
    const Problem& p = report.problems.front();
    EXPECT_EQ(p.severity, Severity::Error);
    EXPECT_EQ(p.at.line, GetParam().line);
    EXPECT_EQ(p.at.column, GetParam().column);
    EXPECT_NE(p.message.find(GetParam().words), std::string::npos) << p.message;
    EXPECT_FALSE(report.rules.has_value());
}

INSTANTIATE_TEST_SUITE_P(Texts, CheckerMalformed, ::testing::ValuesIn(kMalformed));

TEST(CheckerFile, NestingPastTheReadersLimitIsRefusedWithoutRecursion) {
    std::string deep = "<plist>";
    for (int i = 0; i < 100000; ++i) deep += "<array>";
    const CheckReport report = checkRulesText(deep);
    ASSERT_EQ(report.problems.size(), 1u) << describe(report.problems);
    EXPECT_EQ(report.problems.front().at.line, 1);
    EXPECT_EQ(report.problems.front().at.column, 8 + 7 * kMaxXmlDepth);  // the array one level too deep
    EXPECT_NE(report.problems.front().message.find("nested more than 256 levels deep"), std::string::npos);
}

TEST(CheckerFile, TopLevelsThatAreNoDictionaryOfGames) {
    const struct {
        const char* text;
        const char* words;
    } cases[] = {
        {"<plist><array/></plist>", "the top level is an array, expected a dictionary of games"},
        {"<plist><dict/></plist>", "the file holds no game"},
        {"<plist><dict><key>G</key><string>x</string></dict></plist>", "the game is a string, expected a dictionary of rules"},
    };
    for (const auto& c : cases) {
        const CheckReport report = checkRulesText(c.text);
        ASSERT_FALSE(report.problems.empty()) << c.text;
        EXPECT_NE(report.problems.front().message.find(c.words), std::string::npos) << report.problems.front().message;
    }
}

TEST(CheckerFile, TextTheReaderTakesButTheScannerDoesNotIsAWarningWithoutPositions) {
    const CheckReport report = checkRulesText("<plist>\n<dict>\n  <key>a</key><key>b</key>\n</dict></plist>");
    ASSERT_FALSE(report.problems.empty());
    const Problem& p = report.problems.front();
    EXPECT_EQ(p.severity, Severity::Warning);
    EXPECT_EQ(p.at.line, 3);
    EXPECT_EQ(p.at.column, 15);
    EXPECT_NE(p.message.find("two keys in a row in <dict>: the key \"a\" has no value"), std::string::npos) << p.message;
}

// A Turkish locale folds 'I' to a dotless i in the C library's tolower; the keys are compared with
// ASCII case folding. The locale is built here for the test, and the test is skipped without it.
TEST(CheckerSuggestions, TheLocaleDoesNotChangeTheNearestKey) {
    const std::string folder = ::testing::TempDir() + "tolvar-locales";
    const std::string build = "mkdir -p '" + folder + "' && localedef -i tr_TR -f UTF-8 '" + folder +
                              "/tr_TR.UTF-8' >/dev/null 2>&1";
    if (std::system(build.c_str()) != 0) GTEST_SKIP() << "no tr_TR locale could be built";
    setenv("LOCPATH", folder.c_str(), 1);
    const std::string before = std::setlocale(LC_ALL, nullptr);
    if (!std::setlocale(LC_ALL, "tr_TR.UTF-8")) GTEST_SKIP() << "the tr_TR locale cannot be used";
    std::vector<std::string> lines = cleanFile();
    lines[15] = "<dict><key>UserEventType</key><integer>1</integer><key>MINIMUMPIECE</key><integer>2</integer></dict>";
    const CheckReport report = checkRulesText(join(lines));
    std::setlocale(LC_ALL, before.c_str());
    unsetenv("LOCPATH");
    EXPECT_NE(describe(report.problems).find("MINIMUMPIECE: not a key of a user event, so it is ignored; did you mean "
                                             "MinimumPieces?"),
              std::string::npos)
        << describe(report.problems);
}

// An action's Sound: a game sound, or a sound file beside the rules file. Files are made in a
// folder of the test's own, and the rules file is checked as if it were there.
TEST(CheckerSound, NamesThatCannotPlayAreWarnedAtTheirValue) {
    const std::string folder = ::testing::TempDir() + "tolvar-sounds";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder + "/a folder");
    const auto write = [&](const std::string& name, const std::string& bytes) {
        std::ofstream(folder + "/" + name, std::ios::binary) << bytes;
    };
    std::string wav = std::string("RIFF") + std::string(4, '\0') + "WAVEfmt " + std::string(20, '\0') + "data";
    wav += std::string(4, '\0') + std::string(100, '\x10');
    write("chime.wav", wav);
    write("notes.txt", "not a sound\n");
    write("cut.wav", "RIFF\x10\0\0\0WAVE");
    write("tune.ogg", "OggS" + std::string(60, '\0'));
    const struct {
        const char* sound;
        const char* words;  // nullptr: no finding
    } cases[] = {
        {"removal", nullptr},
        {"best-score", nullptr},
        {"chime.wav", nullptr},
        {"tune.ogg", nullptr},
        {"Removal", "\"Removal\" is no sound of the game, and as a file beside the rules file it is not there; "
                    "expected one of the game's sounds (select, deselect, removal, landing, swap, refill, end, "
                    "best-score)"},
        {"notes.txt", "\"notes.txt\" beside the rules file is not a sound file; expected WAV"},
        {"cut.wav", "\"cut.wav\" beside the rules file is not a sound file"},
        {"a folder", "it is a folder, not a file"},
        {"../chime.wav", "\"../chime.wav\" is not a file name"},
        {"", "\"\" is not a file name"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.sound);
        std::vector<std::string> lines = cleanFile();
        lines[10] = "<dict><key>EventType</key><integer>8</integer><key>ActionList</key><array><dict><key>ActionType"
                    "</key><integer>21</integer><key>Sound</key><string>" + std::string(c.sound) +
                    "</string></dict></array></dict>";
        const CheckReport report = checkRulesText(join(lines), folder);
        const auto match = std::find_if(report.problems.begin(), report.problems.end(),
                                        [](const Problem& p) { return p.key == "Sound"; });
        if (!c.words) {
            EXPECT_EQ(match, report.problems.end()) << describe(report.problems);
            continue;
        }
        ASSERT_NE(match, report.problems.end()) << describe(report.problems);
        EXPECT_NE(match->message.find(c.words), std::string::npos) << match->message;
        EXPECT_NE(match->message.find("the action plays no sound"), std::string::npos) << match->message;
        EXPECT_EQ(match->severity, Severity::Warning) << "a game with a silent action can still be played";
        EXPECT_EQ(match->at.line, 11);
        EXPECT_EQ(match->at.column, static_cast<int>(lines[10].find("<string>")) + 1);
    }
    // A rules file read from disk looks beside itself.
    std::vector<std::string> lines = cleanFile();
    lines[10] = "<dict><key>EventType</key><integer>8</integer><key>ActionList</key><array><dict><key>ActionType"
                "</key><integer>21</integer><key>Sound</key><string>chime.wav</string></dict></array></dict>";
    write("Rules.dict", join(lines));
    const std::vector<Problem> found = checkRulesFile(folder + "/Rules.dict").problems;
    EXPECT_TRUE(std::none_of(found.begin(), found.end(), [](const Problem& p) { return p.key == "Sound"; }))
        << describe(found);
    std::filesystem::remove_all(folder);
}

}  // namespace
