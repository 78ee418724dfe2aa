// Marks what the default host offers to other libraries; everything else in it stays hidden.
//
// An application that is its own host defines the same functions by including the same headers. The mark then
// exports them from the program, where the dynamic linker finds them for the engine (see docs/host.md).

#pragma once

#define CORVANE_HOST_EXPORT __attribute__((visibility("default")))
