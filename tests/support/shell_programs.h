#pragma once

#include <gtest/gtest.h>

/// Leaves out a test in which a shell script stands in for a program, on a system that starts none.
#ifdef _WIN32
#define TARNWICK_NEEDS_SHELL_PROGRAMS() GTEST_SKIP() << "shell scripts, which stand in for programs here, do not start"
#else
#define TARNWICK_NEEDS_SHELL_PROGRAMS() static_cast<void>(0)
#endif
