// Property lists, the rules dictionary as game records, the "Actions" menu and the game menu.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>

#include "core/DataFolder.h"
#include "core/PlistFile.h"
#include "rules/BuiltinGames.h"
#include "rules/GameLibrary.h"
#include "rules/ShownText.h"
#include "rules/RulesDict.h"

using namespace tolvar;

namespace {

Value num(std::int64_t n) { return Value::integer(n); }
Value str(const std::string& s) { return Value::string(s); }

Value dict(std::initializer_list<std::pair<const char*, Value>> entries) {
    Dictionary d;
    for (const auto& [key, value] : entries) d.set(key, value);
    return Value::dictionary(std::move(d));
}

Value ok(const std::variant<Value, PlistError>& result) {
    EXPECT_TRUE(std::holds_alternative<Value>(result)) << std::get<PlistError>(result).reason;
    return std::holds_alternative<Value>(result) ? std::get<Value>(result) : Value();
}

// Expects the bytes to be refused for a reason that mentions why; returns the reason.
std::string refused(const std::variant<Value, PlistError>& result, const std::string& why = "") {
    const auto* error = std::get_if<PlistError>(&result);
    if (!error) {
        ADD_FAILURE() << "bytes were accepted";
        return {};
    }
    EXPECT_NE(error->reason, "");
    EXPECT_NE(error->reason.find(why), std::string::npos) << error->reason;
    return error->reason;
}

Value sampleTree() {
    const Value inner = dict({{"b", Value::boolean(false)}, {"a", Value::data(Data{{0, 1, 2, 255}})}});
    return dict({{"Zebra", num(-1)}, {"Apple", num(0x123456789LL)}, {"Mango", Value::real(-2.25)},
                 {"Text", str("Caf\xc3\xa9 <&> 'quoted' \"double\"")}, {"When", Value::date(Date{123456789.0})},
                 {"Yes", Value::boolean(true)}, {"Empty", Value::dictionary()},
                 {"List", Value::array({num(3), str(""), inner, Value::array(), Value::date(Date{-1000.0})})}});
}

std::string nestedXml(int levels, const std::string& filler = "<integer>1</integer>") {
    std::string open, close;
    for (int i = 0; i < levels; ++i) open += "<array>", close += "</array>";
    return "<?xml version=\"1.0\"?>\n<plist version=\"1.0\">" + open + filler + close + "</plist>\n";
}

// {"zulu": 1, "alpha": [true, "x", -5, 2.5], "mid": {"k": <01 02>}} as a binary property list.
const std::string kBinary("bplist00\xd3\x01\x02\x03\x04\x05\x0a\x54zulu\x55\x61lpha\x53mid\x10\x01\xa4\x06\x07\x08\x09"
    "\x09\x51x\x13\xff\xff\xff\xff\xff\xff\xff\xfb\x23\x40\x04\0\0\0\0\0\0\xd1\x0b\x0c\x51k\x42\x01\x02\x08\x0f\x14\x1a"
    "\x1e\x20\x25\x26\x28\x31\x3a\x3d\x3f\0\0\0\0\0\0\x01\x01\0\0\0\0\0\0\0\x0d\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x42", 111);

// Builds the game against menu (a fresh one if none); what it printed goes to out.
std::unique_ptr<GameInfo> build(const Value& rules, std::string* out = nullptr, ActionsMenu* menu = nullptr) {
    ActionsMenu fresh;
    std::string ignored;
    testing::internal::CaptureStdout();
    auto info = createStructsFromRulesDict(&rules, menu ? *menu : fresh);
    (out ? *out : ignored) = testing::internal::GetCapturedStdout();
    return info;
}

std::string contentsOf(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

using Ints = std::vector<std::int64_t>;

// One field of every record of a list, in the list's order.
template <typename Record, typename Field>
Ints collect(const Record* head, Field Record::*field) {
    Ints out;
    for (const Record* r = head; r; r = r->next.get()) out.push_back(static_cast<std::int64_t>(r->*field));
    return out;
}

std::vector<int> boardNumbers(const GameInfo& g) {
    return {g.boardWidth, g.boardHeight, g.hasLauncher, g.numShapes, g.numColors, g.setupRandomFill,
            g.setupMaxLinearColors, g.setupMaxLinearShapes, g.squareShapes, g.colorsMatchShapes, g.holesAllowed};
}

const std::vector<std::string> kBuiltinMenu = {"None", "Vexamor", "Trindle", "Glimmet"};

class DataHome : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(mkdtemp(home_.data()), nullptr);
        setenv("XDG_DATA_HOME", (home_ + "/share").c_str(), 1);
        setenv("HOME", home_.c_str(), 1);
    }
    void TearDown() override { std::filesystem::remove_all(home_); }
    std::string rulesPath() const { return home_ + "/share/Tolvar/RulesDict.dict"; }
    // Loads the menu as the game does at launch; returns what it printed.
    std::string setup(GameLibrary& library, bool expectOk = true) {
        testing::internal::CaptureStdout();
        EXPECT_EQ(library.setupGameSelections(), expectOk);
        return testing::internal::GetCapturedStdout();
    }
    // Puts the bytes, or a folder when there are none, at the rules path.
    void writeRules(const std::optional<std::string>& bytes) {
        std::filesystem::create_directories(home_ + "/share/Tolvar");
        std::filesystem::remove(rulesPath());
        if (bytes) std::ofstream(rulesPath(), std::ios::binary) << *bytes;
        else std::filesystem::create_directory(rulesPath());
    }
    std::string home_ = (std::filesystem::temp_directory_path() / "tolvar-data-XXXXXX").string();
};

}  // namespace

TEST(PlistValues, NumbersOfEveryKindFollowTheRule) {
    constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max(), kMin = -kMax - 1;
    const std::pair<Value, std::optional<std::int32_t>> cases[] = {
        {num(-7), -7}, {num(0x100000005LL), 5}, {num(0xFFFFFFFFLL), -1}, {num(0x80000000LL), kMin},
        {num(-0x100000001LL), -1}, {Value::real(3.9), 3}, {Value::real(-3.9), -3}, {Value::real(1e20), kMax},
        {Value::real(-1e20), kMin}, {Value::real(2147483647.5), kMax}, {Value::real(HUGE_VAL), kMax},
        {Value::real(NAN), 0}, {str(" -12abc"), -12}, {str("\t\n +42"), 42}, {str("99999999999"), kMax},
        {str("-99999999999"), kMin}, {str("-2147483648"), kMin}, {str("abc"), 0}, {str(""), 0}, {str("- 5"), 0},
        {str("12 34"), 12}, {str(std::string(25, '0') + "9"), 9}, {Value::boolean(true), 1}, {Value::boolean(false), 0},
        {Value::array(), std::nullopt}, {Value::dictionary(), std::nullopt}, {Value::data(Data{{1, 2}}), std::nullopt},
        {Value::date(Date{5.0}), std::nullopt}};
    for (std::size_t i = 0; i < std::size(cases); ++i)
        EXPECT_EQ(cases[i].first.intValue(), cases[i].second) << "case " << i;
}

TEST(PlistValues, CopiesShareTheirDictionaryAndEqualityIsDeep) {
    Value v = dict({{"zeta", num(1)}, {"mid", num(1)}});
    const Value copy = v;
    v.asDictionary()->set("zeta", str("again"));  // in place
    EXPECT_EQ(copy, dict({{"mid", num(1)}, {"zeta", str("again")}}));  // whatever the order
    EXPECT_EQ(toXmlPropertyList(copy), toXmlPropertyList(dict({{"zeta", str("again")}, {"mid", num(1)}})));
    for (const auto& [a, b] : {std::pair(copy, dict({{"zeta", str("again")}, {"mid", num(2)}})),
                               std::pair(copy, dict({{"zeta", str("again")}})), std::pair(num(1), Value::real(1.0)),
                               std::pair(num(1), Value::boolean(true)), std::pair(num(1), str("1")),
                               std::pair(Value::array({num(1), num(2)}), Value::array({num(2), num(1)}))})
        EXPECT_FALSE(a == b) << toXmlPropertyList(a) << toXmlPropertyList(b);
}

TEST(PlistRead, XmlAndBinaryKeepEveryKindAndTheKeyOrder) {
    const std::string xml = toXmlPropertyList(sampleTree());
    const Value back = ok(parsePropertyList(xml));
    EXPECT_EQ(back, sampleTree());
    EXPECT_EQ(toXmlPropertyList(back), xml);  // in the same key order
    const Value binary = ok(parsePropertyList(kBinary));
    const Value alpha = Value::array({Value::boolean(true), str("x"), num(-5), Value::real(2.5)});
    const Value want = dict({{"zulu", num(1)}, {"alpha", alpha}, {"mid", dict({{"k", Value::data(Data{{1, 2}})}})}});
    EXPECT_EQ(binary, want);
    EXPECT_EQ(toXmlPropertyList(binary), toXmlPropertyList(want));  // in the same key order
    // Dates count from the start of 2001 and are written in UTC.
    EXPECT_NE(toXmlPropertyList(Value::date(Date::fromUnixTime(1.7e9))).find("<date>2023-11-14T22:13:20Z</date>"),
              std::string::npos);
    // Nesting counts open elements only; empty elements and comments are none.
    EXPECT_TRUE(ok(parsePropertyList(nestedXml(200))).isArray());
    std::string flat;
    for (int i = 0; i < 1000; ++i) flat += "<array/><dict/><!-- <array> -->";
    const Value v = ok(parsePropertyList(nestedXml(1, flat)));
    EXPECT_EQ(v.isArray() ? v.asArray()->size() : 0u, 2000u);
}

TEST(PlistRead, BrokenOrHostileBytesAreRefused) {
    const std::string xml = toXmlPropertyList(sampleTree());
    const std::pair<std::string, const char*> cases[] = {
        {"", ""}, {"not a property list", ""}, {std::string(10, '\0'), ""}, {xml.substr(0, xml.size() / 2), ""},
        {kBinary.substr(0, 8), ""}, {kBinary.substr(0, 20), ""}, {kBinary.substr(0, 60), ""}, {kBinary.substr(0, 100), ""},
        {kBinary.substr(0, 110), ""}, {nestedXml(400), "nested"}, {nestedXml(200000), "nested"}};
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        SCOPED_TRACE("case " + std::to_string(i));
        refused(parsePropertyList(cases[i].first), cases[i].second);
    }
}

TEST(RulesDict, AnEmptyDictionaryGivesEveryDefault) {
    // Lists of another kind than an array count as absent.
    for (const Value& rules : {Value::dictionary(), dict({{"SupportedEvents", num(1)}, {"VariableList", dict({})},
                                                          {"SupportedUserEvents", dict({{"UserEventID", num(1)}})},
                                                          {"CompletionCriteria", str("none")}})}) {
        auto info = build(rules);
        ASSERT_TRUE(info);
        EXPECT_EQ(boardNumbers(*info), (std::vector<int>{5, 5, 0, 1, 4, 0, 0, 0, 0, 0, 0}));
        EXPECT_EQ(info->scoreMultiplier, 1u);
        EXPECT_EQ(info->gameName, "Unknown");
        EXPECT_EQ(info->events, nullptr);
        EXPECT_EQ(info->userEvents, nullptr);
        EXPECT_EQ(info->completionCriteria, nullptr);
        EXPECT_EQ(info->variables, nullptr);
    }
    ActionsMenu menu;  // and no game without a dictionary
    EXPECT_EQ(createStructsFromRulesDict(nullptr, menu), nullptr);
    EXPECT_EQ(build(Value::array({Value::dictionary()})), nullptr);
}

TEST(RulesDict, NumbersAreReadWithTheRuleAndStoredInTheirWidth) {
    auto info = build(dict({{"BoardWidth", num(0x100000105LL)}, {"BoardHeight", str("  -12abc")},
                            {"HasLauncher", Value::array()}, {"NumShapes", Value::boolean(true)},
                            {"NumColors", Value::real(3.7)}, {"SetupMaxLinearColors", str("99999999999")},
                            {"GameName", num(12)}, {"GameDescription", str("Play it")}}));
    // Each keeps the low 8 bits of its number; a key without a number keeps its default.
    EXPECT_EQ(boardNumbers(*info), (std::vector<int>{5, 244, 0, 1, 3, 0, 0xff, 0, 0, 0, 0}));
    EXPECT_EQ(info->gameName, "Unknown");
    EXPECT_EQ(info->descriptionText, "Play it");
    // The multiplier is sign-extended from 32 bits.
    const std::pair<Value, std::uint64_t> multipliers[] = {{num(-1), ~std::uint64_t{0}}, {str("99999999999"), 2147483647u},
                                                           {num(0x80000000LL), 0xFFFFFFFF80000000ull}, {dict({}), 1u}};
    for (const auto& [given, stored] : multipliers)
        EXPECT_EQ(build(dict({{"ScoreMultiplier", given}}))->scoreMultiplier, stored);
}

// What each field of an action does is the engine transcripts' to show; here, the lists' order,
// entries of the wrong kind, and the printed lines.
TEST(RulesDict, EveryListRunsInReverseOfItsArrayWithItsLines) {
    auto action = [](int id) { return dict({{"ActionID", num(id)}, {"ActionType", num(id * 10)}}); };
    const Value full = dict({{"ActionID", num(9)}, {"Amount", num(-5)}, {"LowerIsBetter", num(1)}});
    // Entries that are not dictionaries read as empty ones.
    const Value events = Value::array(
        {dict({{"EventID", num(7)}, {"ActionList", Value::array({action(1), action(2), dict({{"Message", num(3)}}), num(4)})}}),
         dict({{"EventID", num(8)}, {"ActionList", Value::array({full})}}), str("x")});
    const Value userEvents = Value::array({dict({{"UserEventCharacter", num(288)}, {"UserEventTriggerAction", dict({{"Amount", num(2)}})}}),
                                           dict({{"UserEventCharacter", num(200)}}),
                                           dict({{"UserEventTriggerAction", num(4)}})});
    std::string out;
    auto info = build(dict({{"SupportedEvents", events}, {"SupportedUserEvents", userEvents},
                            {"CompletionCriteria", Value::array({dict({{"CompletionValue", num(40)}}), dict({})})},
                            {"VariableList", Value::array({dict({{"VariableValue", num(-1)}}), Value::array()})}}),
                      &out);
    EXPECT_EQ(out, "Adding action 1 to event 7\nAdding action 2 to event 7\nAdding action 0 to event 7\n"
                   "Adding action 0 to event 7\nsetting action to amount.\nsetting lower is better.\n"
                   "Adding action 9 to event 8\nsetting action to amount.\n");
    ASSERT_EQ(collect(info->events.get(), &SupportedEvent::eventID), (Ints{0, 8, 7}));
    EXPECT_EQ(collect(info->events->next->next->actions.get(), &GameAction::actionType), (Ints{0, 0, 20, 10}));
    EXPECT_FALSE(info->events->next->next->actions->next->message);  // not a string: absent
    // Keys keep their low 8 bits, signed; a trigger that is not a dictionary reads as an empty one.
    EXPECT_EQ(collect(info->userEvents.get(), &SupportedUserEvent::userEventCharacter), (Ints{0, -56, 32}));
    ASSERT_TRUE(info->userEvents->triggerAction);
    EXPECT_EQ(info->userEvents->triggerAction->actionType, 0);
    EXPECT_FALSE(info->userEvents->next->triggerAction);
    EXPECT_EQ(collect(info->completionCriteria.get(), &CompletionCriterion::completionValue), (Ints{0, 40}));
    EXPECT_EQ(collect(info->variables.get(), &GameVariable::variableValue), (Ints{0, -1}));
    // A very long list is built and released without overflowing the stack.
    const Value longList = dict({{"ActionList", Value::array(Array(200000, dict({})))}});
    info = build(dict({{"SupportedEvents", Value::array({longList})}}));
    EXPECT_EQ(collect(info->events->actions.get(), &GameAction::actionID).size(), 200000u);
    info.reset();
}

TEST(RulesDict, KeyedUserEventsTakeActionMenuItemsInTurn) {
    struct Case {
        const char* what;
        std::vector<std::vector<std::pair<int, int>>> games;  // user event types and keys, game after game
        std::vector<std::pair<std::string, char>> bound;        // titles and keys of the first items
    } cases[] = {
        {"fresh menu", {}, {}},
        {"space bar", {{{9, 32}}}, {{"Remove Selection", ' '}}},
        {"keyless events do not count", {{{4, 0}, {3, 'w'}, {4, 256}, {4, 'c'}}},
         {{"Swap Adjacent", 'w'}, {"Select Color Region", 'c'}}},
        {"only keyless events", {{{9, 0}, {9, 256}}}, {}},
        {"types outside 1 to 10", {{{11, 'a'}, {0, 'b'}, {10, 'p'}}},
         {{"Action 1", 'a'}, {"Action 2", 'b'}, {"Select Pattern", 'p'}}},
        // "Action 1" was retitled by the first game: the second game's first key finds nothing.
        {"second game", {{{9, 32}}, {{4, 'x'}, {3, 'y'}}}, {{"Remove Selection", ' '}, {"Swap Adjacent", 'y'}}},
        {"more keys than items", {{{1, 'a'}, {2, 'b'}, {3, 'c'}, {4, 'd'}, {5, 'e'}, {6, 'f'}, {7, 'g'}, {8, 'h'}, {9, 'i'}}},
         {{"Move Launcher", 'a'}, {"Rotate Selection", 'b'}, {"Swap Adjacent", 'c'}, {"Select Color Region", 'd'},
          {"Select Shape Region", 'e'}, {"Move Row", 'f'}, {"Move Column", 'g'}, {"Fire", 'h'}}}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        ActionsMenu menu;
        for (const auto& game : c.games) {
            Array events;
            for (auto [type, key] : game)
                events.push_back(dict({{"UserEventType", num(type)}, {"UserEventCharacter", num(key)}}));
            build(dict({{"SupportedUserEvents", Value::array(events)}}), nullptr, &menu);
        }
        EXPECT_EQ(menu.title(), "Actions");
        EXPECT_EQ(menu.enabled(), !c.bound.empty());
        for (std::size_t i = 0; i < ActionsMenu::kItemCount; ++i) {
            const auto want = i < c.bound.size() ? c.bound[i] : std::make_pair("Action " + std::to_string(i + 1), '\0');
            const ActionsMenuItem& item = menu.item(static_cast<int>(i));
            EXPECT_EQ(std::tuple(item.title, item.keyEquivalent, item.enabled), std::tuple(want.first, want.second, want.second != 0))
                << "item " << i;
        }
    }
}

TEST_F(DataHome, TheFolderFollowsAnAbsoluteXdgDataHomeOrHomeAndAFailureToMakeItIsPrintedOnItsLine) {
    EXPECT_EQ(rulesFilePath(), rulesPath());
    std::filesystem::remove_all(home_ + "/share");
    std::ofstream(home_ + "/share") << "a file where the data folder should be";
    GameLibrary library;
    EXPECT_EQ(setup(library), "code: 20\n");  // not a directory: the games still play
    EXPECT_EQ(library.gameMenu(), kBuiltinMenu);
    // Unset, empty or relative (the base-directory rule: ignored), the folder is under $HOME.
    for (const char* dataHome : {"", "share", "./share", "~/share"}) {
        setenv("XDG_DATA_HOME", dataHome, 1);
        EXPECT_EQ(applicationSupportDirectory(false), home_ + "/.local/share") << dataHome;
    }
}

TEST_F(DataHome, TheDescriptionIsShownInTheLanguageAsked) {
    const std::string longGerman(kShownDescriptionCharacters + 5, 'w');
    writeRules(toXmlPropertyList(dict({{"Game", dict({{"GameDescription", str("Remove regions")},
                                                      {"GameDescription.de", str(longGerman)}})},
                                       {"German", dict({{"GameDescription.de", str("Nur Deutsch")}})}})));
    GameLibrary library;
    setup(library);
    library.selectGame("Game");
    EXPECT_EQ(library.descriptionText(), "Remove regions");
    EXPECT_EQ(library.descriptionText("de_DE.UTF-8"), shownDescription(longGerman));
    EXPECT_EQ(library.descriptionText("es_ES.UTF-8"), "Remove regions");
    library.selectGame("German");
    EXPECT_EQ(library.descriptionText("de_DE.UTF-8"), "Nur Deutsch");
    EXPECT_EQ(library.descriptionText("fr_FR.UTF-8"), "Unknown");
}

TEST_F(DataHome, GamesAreOfferedInFileOrderAndChoosingOneShowsItsDescription) {
    const std::string longText(kShownDescriptionCharacters + 5, 'w');
    writeRules(toXmlPropertyList(dict({{"Zeta", createTestGameTwo()}, {"Number", num(5)}, {"Listless", str("")},
                                       {"Long", dict({{"GameDescription", str(longText)}})}})));
    GameLibrary library;
    setup(library);
    EXPECT_EQ(library.gameMenu(), (std::vector<std::string>{"None", "Zeta", "Number", "Listless", "Long"}));
    library.selectGame("Long");  // only what the main window shows is kept
    EXPECT_EQ(library.descriptionText(), shownDescription(longText));
    library.selectGame("Number");  // not a dictionary: a game with every default
    ASSERT_TRUE(library.currentRules());
    EXPECT_EQ(*library.currentRules(), Value::dictionary());
    EXPECT_EQ(library.descriptionText(), "Unknown");
    library.selectGame("Zeta");
    ASSERT_TRUE(library.currentRules());
    EXPECT_EQ(*library.currentRules(), createTestGameTwo());
    library.selectGame("None");  // keeps the description
    EXPECT_EQ(library.currentRules(), nullptr);
    EXPECT_EQ(library.selectedTitle(), "None");
    EXPECT_EQ(library.descriptionText().rfind("Swap any two different", 0), 0u);
    library.selectGame("No such game");
    EXPECT_EQ(library.currentRules(), nullptr);
}

// A first write cut by a full disk leaves no rules file and says why; the next launch writes the whole
// file, as XML another program reads with the same kinds of values, and the launch after reads it as it is.
TEST_F(DataHome, TheBuiltInGamesAreWrittenOnceWholeAsPlainXml) {
    GameLibrary first;
    std::string err;
    {
        ScopedWriteFailure full(4096, ENOSPC);
        testing::internal::CaptureStderr();
        EXPECT_EQ(setup(first), "code: 0\n");  // the folder was made
        err = testing::internal::GetCapturedStderr();
    }
    EXPECT_EQ(err, rulesPath() + ": cannot be written (No space left on device); the built-in games are "
                                 "played without it\n");
    EXPECT_TRUE(std::filesystem::is_empty(home_ + "/share/Tolvar"));  // neither a cut file nor a temporary one
    EXPECT_EQ(first.gameMenu(), kBuiltinMenu);                         // played from memory
    GameLibrary next;
    EXPECT_EQ(setup(next), "");
    const std::string written = contentsOf(rulesPath());
    EXPECT_EQ(ok(parsePropertyList(written)), *next.allGameRules());
    EXPECT_EQ(written.rfind("<?xml", 0), 0u);
    EXPECT_NE(written.find("<!DOCTYPE plist"), std::string::npos);
    // Another program reads <true/> as a boolean, not the number 1: numbers are integer elements.
    for (const char* kind : {"<true", "<false", "<real", "<date", "<data"})
        EXPECT_EQ(written.find(kind), std::string::npos) << kind;
    GameLibrary third;
    setup(third);
    EXPECT_EQ(third.gameMenu(), kBuiltinMenu);
    EXPECT_EQ(contentsOf(rulesPath()), written);
}

TEST_F(DataHome, UnreadableFilesKeepTheMenuAndTheFileAndSayWhy) {
    const std::string games = toXmlPropertyList(dict({{"Vexamor", createTestGameOne()}}));
    const std::pair<const char*, std::optional<std::string>> files[] = {
        {"not a property list", "Tolvar rules, handwritten\n"}, {"empty", ""}, {"a folder", std::nullopt},
        {"truncated", games.substr(0, games.size() * 2 / 3)}, {"root is a string", toXmlPropertyList(str("Vexamor"))},
        {"root is an array", toXmlPropertyList(Value::array({createTestGameOne()}))},
        {"binary garbage", std::string("bplist00\xff\xff\xff\x00\x01", 13)}};
    for (const auto& [what, bytes] : files) {
        SCOPED_TRACE(what);
        std::filesystem::remove_all(home_ + "/share");
        GameLibrary library;
        setup(library);  // a good file first: the menu has the games
        writeRules(bytes);
        testing::internal::CaptureStderr();
        setup(library, false);
        const std::string err = testing::internal::GetCapturedStderr();
        library.selectGame("Vexamor");
        EXPECT_FALSE(library.allGameRules());
        EXPECT_EQ(library.currentRules(), nullptr);
        EXPECT_EQ(library.gameMenu(), kBuiltinMenu);
        EXPECT_NE(err.find(rulesPath()), std::string::npos) << err;
        EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1) << err;
        if (bytes) EXPECT_EQ(contentsOf(rulesPath()), *bytes);
        else EXPECT_TRUE(std::filesystem::is_directory(rulesPath()));
    }
    // A rules path given elsewhere is not created when missing.
    GameLibrary library;
    testing::internal::CaptureStderr();
    EXPECT_FALSE(library.loadRulesFromFile(home_ + "/elsewhere.dict"));
    const std::string err = testing::internal::GetCapturedStderr();
    EXPECT_NE(err.find(home_ + "/elsewhere.dict: no such file"), std::string::npos) << err;
    EXPECT_FALSE(std::filesystem::exists(home_ + "/elsewhere.dict"));
    EXPECT_EQ(library.gameMenu(), std::vector<std::string>{});
}
