#include "core/PlistText.h"

#include <cinttypes>
#include <cstdio>
#include <string>
#include <vector>

#include "core/PlistFile.h"
#include "core/PlistLayout.h"

namespace tolvar {

namespace {

constexpr std::string_view kProlog =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
constexpr std::string_view kEpilog = "</plist>\n";

// The writer below spells out the texts that hold no surprise (flags, integers, strings, arrays,
// dictionaries) and leaves the others to the library. It is not used for a value that the library
// would write otherwise than its kinds say: nested past kMaxDepth (nothing is written), with data
// (its lines depend on the depth), or with a zero byte in a text (the library cuts it there).
bool writtenPlainly(const Value& value) {
    std::vector<std::pair<const Value*, int>> pending{{&value, 0}};
    auto plainText = [](const std::string& s) { return s.find('\0') == std::string::npos; };
    while (!pending.empty()) {
        const auto [v, depth] = pending.back();
        pending.pop_back();
        if (depth > plistlayout::kMaxDepth || v->isData()) return false;
        if (const std::string* s = v->asString(); s && !plainText(*s)) return false;
        if (const Array* a = v->asArray())
            for (const Value& item : *a) pending.push_back({&item, depth + 1});
        if (const Dictionary* d = v->asDictionary())
            for (const auto& [key, item] : d->entries()) {
                if (!plainText(key)) return false;
                pending.push_back({&item, depth + 1});
            }
    }
    return true;
}

class XmlWriter {
public:
    explicit XmlWriter(const std::function<void(std::string_view)>& out) : out_(out) {}
    void value(const Value& v, int depth);

private:
    void indent(int depth) {
        if (tabs_.size() < static_cast<std::size_t>(depth)) tabs_.resize(static_cast<std::size_t>(depth), '\t');
        out_(std::string_view(tabs_).substr(0, static_cast<std::size_t>(depth)));
    }
    void text(std::string_view tag, const std::string& s, int depth);
    // A value the library writes on one line, written by the library and moved to this depth.
    void byLibrary(const Value& v, int depth);

    const std::function<void(std::string_view)>& out_;
    std::string tabs_;
};

void XmlWriter::text(std::string_view tag, const std::string& s, int depth) {
    indent(depth);
    out_("<");
    out_(tag);
    out_(">");
    std::size_t start = 0;
    for (std::size_t i = 0; i < s.size(); ++i) {
        const char* entity = s[i] == '<' ? "&lt;" : s[i] == '>' ? "&gt;" : s[i] == '&' ? "&amp;" : nullptr;
        if (!entity) continue;
        out_(std::string_view(s).substr(start, i - start));
        out_(entity);
        start = i + 1;
    }
    out_(std::string_view(s).substr(start));
    out_("</");
    out_(tag);
    out_(">\n");
}

void XmlWriter::byLibrary(const Value& v, int depth) {
    const std::string whole = toXmlPropertyList(v);
    indent(depth);
    out_(std::string_view(whole).substr(kProlog.size(), whole.size() - kProlog.size() - kEpilog.size()));
}

void XmlWriter::value(const Value& v, int depth) {
    switch (v.kind()) {
        case Value::Kind::Boolean:
            indent(depth);
            out_(*v.asBoolean() ? "<true/>\n" : "<false/>\n");
            return;
        case Value::Kind::Integer: {
            char digits[32];
            const int n = std::snprintf(digits, sizeof digits, "%" PRId64, *v.asInteger());
            indent(depth);
            out_("<integer>");
            out_(std::string_view(digits, static_cast<std::size_t>(n)));
            out_("</integer>\n");
            return;
        }
        case Value::Kind::String:
            text("string", *v.asString(), depth);
            return;
        case Value::Kind::Array:
        case Value::Kind::Dictionary: {
            const bool isArray = v.isArray();
            const std::string_view tag = isArray ? "array" : "dict";
            const std::size_t count = isArray ? v.asArray()->size() : v.asDictionary()->size();
            indent(depth);
            out_("<");
            out_(tag);
            if (count == 0) {
                out_("/>\n");
                return;
            }
            out_(">\n");
            if (isArray) {
                for (const Value& item : *v.asArray()) value(item, depth + 1);
            } else {
                for (const auto& [key, item] : v.asDictionary()->entries()) {
                    text("key", key, depth + 1);
                    value(item, depth + 1);
                }
            }
            indent(depth);
            out_("</");
            out_(tag);
            out_(">\n");
            return;
        }
        case Value::Kind::Real:
        case Value::Kind::Date:
        case Value::Kind::Data:
            byLibrary(v, depth);
            return;
    }
}

}  // namespace

void writeXmlPropertyList(const Value& value, const std::function<void(std::string_view)>& out) {
    if (!writtenPlainly(value)) {
        out(toXmlPropertyList(value));
        return;
    }
    out(kProlog);
    XmlWriter(out).value(value, 0);
    out(kEpilog);
}

}  // namespace tolvar
