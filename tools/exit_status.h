// Exit statuses shared by all commands; scripts rely on them, so they never change their meaning. They are
// those of the usual search tools: 1 is an answer, 2 is the lack of one.
#pragma once

namespace tool {

enum ExitStatus : int {
    exitPositive = 0,  // something matched, was replaced or divided, or there was nothing to warn about
    exitNegative = 1,  // nothing did or was, or there were warnings
    exitTrouble = 2,   // wrong usage, or an unreadable file
};

}  // namespace tool
