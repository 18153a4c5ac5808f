// SPDX-License-Identifier: MIT
// Random answers to the calls of one member: as often as MOVRA_HOSTILE_RUNS says (200 unless set),
// from the seed MOVRA_HOSTILE_SEED (1 unless set).
#pragma once

#include "tests/support/fakeservice.h"

#include <QByteArray>

#include <functional>

enum class Answers {
    Replies, ///< of random types and values
    RepliesSentTwice, ///< a tenth as often
    Errors, ///< of any name and body; a fourth as often
};

/// Sets one random answer after the other for a member whose replies should begin with the
/// signature, and calls `check` each time with the answer and whether the client must accept it.
/// Ends early when the test has failed. Each call starts with the seed, so that a row does the same
/// alone as with others.
void answerAtRandom(FakeService &service, const QByteArray &member, const QByteArray &signature,
                    Answers answers,
                    const std::function<void(bool taken, const QByteArray &answer)> &check);
