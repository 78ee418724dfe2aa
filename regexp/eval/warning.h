// The problems that the parser and the replacement compiler report to the host.
//
// A warning never stops compiling: the construct degrades to literal text or to nothing. docs/dialect.md
// says for each what becomes of it.
#pragma once

#include <cstdint>

/// The numbers are part of the interface: they are never changed and never given twice. A new one goes to
/// the end.
enum RE_Warning : std::uint32_t {
    RE_WARNING_NONE = 0,
    RE_WARNING_UNKNOWN_ESCAPE = 1,           ///< an escaped unit that may not be escaped
    RE_WARNING_BAD_OCTAL = 2,                ///< a malformed \o{...}
    RE_WARNING_BAD_HEX = 3,                  ///< a malformed \x
    RE_WARNING_TRAILING_BACKSLASH = 4,       ///< a backslash is the last unit of the text
    RE_WARNING_UNMATCHED_OPEN = 5,           ///< a ( without its )
    RE_WARNING_UNMATCHED_CLOSE = 6,          ///< a ) without its (
    RE_WARNING_UNCLOSED_SET = 7,             ///< a [ without its ]
    RE_WARNING_NOTHING_TO_REPEAT = 8,        ///< a quantifier with nothing before it
    RE_WARNING_UNCLOSED_QUANTIFIER = 9,      ///< a { without its }
    RE_WARNING_REPEATED_DROPPED = 10,        ///< a quantifier after a construct that was dropped
    RE_WARNING_BAD_NAME = 11,                ///< (?< without a valid name closed by >
    RE_WARNING_NAME_WITHOUT_TOKEN = 12,      ///< a named group where no tokens are made
    RE_WARNING_SECOND_MINUS = 13,            ///< a second - in a mode list
    RE_WARNING_UNDEFINED_NAME = 14,          ///< a reference to a name that no group has
    RE_WARNING_BAD_MODE_AFTER_LETTERS = 15,  ///< an invalid unit after valid mode letters
    RE_WARNING_BAD_MODE = 16,                ///< an empty or invalid mode list
    RE_WARNING_EVALUATION_DISABLED = 17,     ///< a dynamic expression where evaluation is not permitted
    RE_WARNING_UNCLOSED_CONDITION = 18,      ///< a condition without its )
    RE_WARNING_BAD_CONDITION = 19,           ///< a condition of no known form
    RE_WARNING_BAD_QUANTIFIER = 20,          ///< a malformed {...}
    RE_WARNING_BAD_REFERENCE = 21,           ///< a $ in a replacement that begins no reference
    RE_WARNING_TOO_DEEP = 22                 ///< a construct nested too deeply, or a text beyond a limit
};
