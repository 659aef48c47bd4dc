// Writes a property list holding every kind of value to the path given, as the game writes its
// files, so that another reader can check it.
#include "platform/PlistFile.h"

using namespace tolvar;

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    Dictionary entry;
    entry.set("Score", Value::integer(-42));
    entry.set("Date", Value::date(Date::fromUnixTime(1700000000.0)));
    Dictionary root;
    root.set("Vexamor", Value::array({Value::dictionary(entry)}));
    root.set("Real", Value::real(2.5));
    root.set("Yes", Value::boolean(true));
    root.set("No", Value::boolean(false));
    root.set("Bytes", Value::data(Data{{0, 1, 255}}));
    root.set("Text", Value::string("a<b & 'c' \xc3\xa9 ]]>"));
    root.set("Big", Value::integer(0x7fffffffffffLL));
    root.set("Empty", Value::array());
    root.set("Nothing", Value::dictionary());
    return writePropertyListFile(argv[1], Value::dictionary(std::move(root))) ? 0 : 1;
}
