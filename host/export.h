// Marks what the default host offers to other libraries; everything else in it stays hidden.

#pragma once

#define CORVANE_HOST_EXPORT __attribute__((visibility("default")))
