#include "regexp/builder/template.h"

#include <string>

namespace RE_Builder_Space {
namespace {

// What would pair with a parenthesis around the text, begin a reference or a comment, or, as the first unit,
// tell an expression from a text. A backslash before each is taken away again when the text is read.
constexpr std::u16string_view special = u"\\$()[#@";

}  // namespace

RE_Template::RE_Template(std::u16string_view text) {
    for (const char16_t unit : text) {
        written.text += special.find(unit) != special.npos ? u"\\" : u"";
        written.text += unit;
    }
}

RE_Template::RE_Template(const RE_Token& token) {
    written.marks.push_back({RE_Builder::Mark::Kind::inserts, 0, token.identity});
}

RE_Template RE_Template::named(RE_Token_Name name) {
    RE_Template made;
    made.written.text = u"$<" + std::u16string(name.text()) + u">";
    return made;
}

RE_Template RE_Template::matched() {
    RE_Template made;
    made.written.text = u"$&";
    return made;
}

RE_Template RE_Template::before() {
    RE_Template made;
    made.written.text = u"$`";
    return made;
}

RE_Template RE_Template::after() {
    RE_Template made;
    made.written.text = u"$'";
    return made;
}

RE_Template& RE_Template::operator+=(const RE_Template& next) {
    written.append(next.written);
    return *this;
}

}  // namespace RE_Builder_Space
