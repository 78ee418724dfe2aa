// Marks what the engine's shared library offers to its users; everything else in it stays hidden.

#pragma once

#define CORVANE_REGEXP_EXPORT __attribute__((visibility("default")))
