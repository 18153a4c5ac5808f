// SPDX-License-Identifier: MIT
// Every request that calls the service, and how to make it inside this process.
#pragma once

#include "tests/support/openmovra.h"

#include <QByteArray>
#include <QByteArrayList>

#include <vector>

/// One request, and what becomes of it when the service lies.
struct Request {
    const char *name;
    int (Movra::*handler)(char **argv);
    QByteArrayList arguments; ///< behind the command word
    const char *member; ///< that the service is asked for
    const char *expected; ///< what a reply's signature must begin with to be taken
    const char *failure; ///< what is printed if it does not
    int failureStatus;
};

/// Every command and sub-word; the monitor apart.
const std::vector<Request> &requests();

/// What a request printed and how it ended.
struct Outcome {
    int status;
    QByteArray out;
    QByteArray err;
};

/// Makes the request; returns when its handler does.
Outcome make(const Request &request, Movra &movra);

/// Says what is wrong with an outcome, or nothing: status, standard error, and on standard output
/// what every reply that was taken, or was not, must lead to.
QByteArray faultOf(const Request &request, const Outcome &outcome, bool taken);

/// A number from the environment, or the usual one.
int setting(const char *name, int usual);
