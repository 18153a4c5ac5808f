// SPDX-License-Identifier: MIT
// How long tests wait.
#pragma once

#include <chrono>

/// How long a test waits for one event. It is long because only a failing test waits that long, and
/// machines are busy.
constexpr std::chrono::seconds patience { 60 };

/// The same for QTRY_..._WITH_TIMEOUT and QTest::qWaitFor().
constexpr int patienceMs = 60000;
