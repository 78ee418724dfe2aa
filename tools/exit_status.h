// Exit statuses shared by all commands; scripts rely on them.
#pragma once

namespace tool {

enum ExitStatus : int {
    exitPositive = 0,  // something matched, or there was nothing to warn about
    exitNegative = 1,  // nothing matched, or there were warnings
    exitTrouble = 2,   // wrong usage, an unreadable file, an interrupt
};

}  // namespace tool
