// SPDX-License-Identifier: MIT
// How long tests wait.
#pragma once

#include <chrono>

/// How long a test waits for one event. Only a failing test waits so long, so that the limit can be
/// large enough for a busy machine.
constexpr std::chrono::seconds patience { 60 };

/// The same for QTRY_..._WITH_TIMEOUT and QTest::qWaitFor().
constexpr int patienceMs = 60000;
