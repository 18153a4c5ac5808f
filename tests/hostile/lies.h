// SPDX-License-Identifier: MIT
// The ways in which a service lies about one member: as often as MOVRA_HOSTILE_RUNS says (200
// unless set), from the seed MOVRA_HOSTILE_SEED (1 unless set).
#pragma once

#include "tests/support/fakeservice.h"

#include <QByteArray>

#include <functional>

enum class Lie {
    Reply, ///< of random types and values
    ReplyTwice, ///< the same, sent twice; a tenth as often
    Error, ///< of any name and body; a fourth as often
};

/// Has the service lie about a member whose answers begin with the signature, and calls `check`
/// after each new answer is set: whether it is one to be taken, and what it is. Ends early when the
/// test has failed. The seed begins anew each time, so that one row alone replays what it did among
/// others.
void lieAbout(FakeService &service, const char *member, const char *signature, Lie lie,
              const std::function<void(bool taken, const QByteArray &answer)> &check);
