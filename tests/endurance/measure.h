// SPDX-License-Identifier: MIT
// Measurements of an endurance test.
#pragma once

#include <sys/types.h>

/// Prints "figure: NAME VALUE UNIT" on a line; scripts/soak collects these lines.
void figure(const char *name, double value, const char *unit);

/// A line of a process's /proc/PID/status, such as "VmHWM" (the most memory it ever had), in KiB;
/// 0 if there is none.
int memoryOf(pid_t process, const char *field);
