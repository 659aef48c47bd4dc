#include "checker/RulesChecker.h"

#include <cstdio>
#include <filesystem>
#include <variant>

#include "RegularFile.h"
#include "checker/Located.h"
#include "core/Translate.h"
#include "core/PlistFile.h"
#include "core/Utf8.h"

namespace tolvar::checker {

bool CheckReport::hasErrors() const {
    for (const Problem& p : problems)
        if (p.severity == Severity::Error) return true;
    return false;
}

std::vector<Problem> CheckReport::problemsOf(const std::string& title) const {
    std::vector<Problem> out;
    for (const Problem& p : problems)
        if (!p.game.empty() && p.game == title) out.push_back(p);
    return out;
}

std::vector<Problem> CheckReport::fileProblems() const {
    std::vector<Problem> out;
    for (const Problem& p : problems)
        if (p.game.empty()) out.push_back(p);
    return out;
}

namespace {

// Larger files are not rules files; the property-list reader refuses them too.
constexpr std::uintmax_t kMaxRulesFileSize = 64u * 1024u * 1024u;

bool isBinary(const std::string& bytes) { return bytes.compare(0, 6, "bplist") == 0; }

// The reader's findings (integers outside 64 bits, keys written twice) as errors: at their line
// and column in an XML text (offsets come in the text's order), by their path of keys otherwise.
void addFindings(const std::string& text, bool binary, const PlistFindings& findings, CheckReport& report) {
    TextPosition at{1, 1};
    std::size_t counted = 0;  // the offset at reaches
    if (text.compare(0, 3, "\xEF\xBB\xBF") == 0) counted = 3;
    for (const PlistFinding& f : findings.kept) {
        Problem p;
        if (!binary && f.offset != PlistFinding::kNoOffset && f.offset >= counted) {
            for (; counted < f.offset; ++counted) {
                if (text[counted] == '\n') at = {at.line + 1, 1};
                else ++at.column;
            }
            p.at = at;
        }
        p.path = f.path;
        const std::size_t slash = f.path.find('/');
        if (slash != std::string::npos) p.game = f.path.substr(0, slash);
        p.key = f.key;
        p.message = f.message;
        report.problems.push_back(std::move(p));
    }
    if (findings.count > findings.kept.size()) {
        Problem more;
        more.message = trf("%s more like the errors above", std::to_string(findings.count - findings.kept.size()));
        report.problems.push_back(std::move(more));
    }
}

Problem fileProblem(TextPosition at, std::string message, Severity severity = Severity::Error) {
    Problem p;
    p.severity = severity;
    p.at = at;
    p.message = std::move(message);
    return p;
}

}  // namespace

CheckReport checkRulesText(const std::string& bytes, const std::string& folder) {
    CheckReport report;
    const bool binary = isBinary(bytes);
    // The reader goes first: its node tree is gone before the positions are scanned, so the two
    // are never in memory together.
    auto parsed = parsePropertyListNoting(bytes);
    std::optional<XmlPositions> positions;
    std::optional<XmlProblem> xmlProblem;
    if (!binary) {
        auto scanned = scanXmlPositions(bytes);
        if (auto* found = std::get_if<XmlPositions>(&scanned)) positions = std::move(*found);
        else xmlProblem = std::get<XmlProblem>(scanned);
    }
    if (const PlistError* error = std::get_if<PlistError>(&parsed)) {
        // The scanner knows the line where the text goes wrong; the reader says what it makes of it.
        if (xmlProblem)
            report.problems.push_back(fileProblem(xmlProblem->at, trf("not well formed: %s", xmlProblem->message)));
        else
            report.problems.push_back(fileProblem(binary ? TextPosition{} : TextPosition{1, 1}, error->reason));
        return report;
    }
    if (xmlProblem)
        report.problems.push_back(fileProblem(xmlProblem->at,
                                              trf("not well formed, though the game reads it: %s; the lines of later "
                                                  "findings are unknown", xmlProblem->message),
                                              Severity::Warning));
    addFindings(bytes, binary, std::get<ReadPropertyList>(parsed).findings, report);
    Value& root = std::get<ReadPropertyList>(parsed).value;
    const XmlPositions* index = positions ? &*positions : nullptr;
    const XmlPositions::Node rootNode = index ? index->root() : XmlPositions::kNone;
    const TextPosition rootAt = index ? index->at(rootNode) : TextPosition{binary ? 0 : 1, 1};
    const Dictionary* games = root.asDictionary();
    if (!games) {
        report.problems.push_back(fileProblem(
            rootAt, trf("the top level is %s, expected a dictionary of games; no game is offered", kindName(root))));
        return report;
    }
    if (games->empty())
        report.problems.push_back(fileProblem(rootAt, tr("the file holds no game; expected a dictionary of games")));
    const auto& entries = games->entries();
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const auto& [title, rules] = entries[i];
        // The games stand in the file's order, so the i-th key is almost always this game's.
        const XmlPositions::Node node = !index ? XmlPositions::kNone
                                        : index->keyIs(rootNode, i, title) ? index->item(rootNode, i)
                                                                            : index->valueOf(rootNode, title);
        for (Problem& p : checkGame(title, rules, index, node, folder)) report.problems.push_back(std::move(p));
    }
    report.rules = std::move(root);
    return report;
}

CheckReport checkRulesFile(const std::string& path) {
    auto read = readRegularFile(path, kMaxRulesFileSize);
    if (auto* bytes = std::get_if<std::string>(&read))
        return checkRulesText(*bytes, std::filesystem::path(path).parent_path().string());
    CheckReport report;
    report.problems.push_back(fileProblem({}, std::get<ReadRefusal>(read).reason));
    return report;
}

std::string formatProblem(const std::string& file, const Problem& p) {
    std::string out = shownPath(file);
    if (p.at.line > 0) out += ":" + std::to_string(p.at.line) + ":" + std::to_string(p.at.column);
    else if (!p.path.empty()) out += ":" + p.path;
    out += p.severity == Severity::Error ? ": error: " : ": warning: ";
    if (!p.game.empty()) out += p.game + ": ";
    if (!p.key.empty()) out += p.key + ": ";
    return out + p.message;
}

namespace {

// A JSON string of s; bytes that are not UTF-8 become U+FFFD, so the output stays UTF-8.
std::string jsonString(const std::string& raw) {
    const std::string s = validUtf8(raw);
    std::string out = "\"";
    for (unsigned char c : s) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c < 0x20) {
            char buffer[8];
            std::snprintf(buffer, sizeof buffer, "\\u%04x", c);
            out += buffer;
        } else {
            out += static_cast<char>(c);
        }
    }
    return out + "\"";
}

}  // namespace

std::string problemsAsJson(const std::string& file, const std::vector<Problem>& problems) {
    std::string out = "{\"file\": " + jsonString(file) + ", \"problems\": [";
    for (std::size_t i = 0; i < problems.size(); ++i) {
        const Problem& p = problems[i];
        out += i ? ",\n  " : "\n  ";
        out += "{\"severity\": " + jsonString(p.severity == Severity::Error ? "error" : "warning") +
               ", \"line\": " + std::to_string(p.at.line) + ", \"column\": " + std::to_string(p.at.column) +
               ", \"path\": " + jsonString(p.path) + ", \"game\": " + jsonString(p.game) +
               ", \"key\": " + jsonString(p.key) + ", \"message\": " + jsonString(p.message) + "}";
    }
    return out + (problems.empty() ? "]}" : "\n]}");
}

}  // namespace tolvar::checker
