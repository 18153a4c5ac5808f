// SPDX-License-Identifier: MIT
// Every command form, with what it sends and what it prints when its call succeeds and when it
// fails.
#pragma once

#include <QByteArray>
#include <QByteArrayList>

#include <vector>

class FakeService;

/// A request as it is typed behind service and path, and what may come of it.
struct CommandForm {
    const char *name;
    QByteArrayList words;
    const char *member; ///< that is called
    QByteArray call; ///< what reaches the service
    QByteArray answer; ///< of the service, in GVariant text
    const char *signature; ///< of the answer; one that does not begin with it is a failed call
    QByteArray out; ///< printed upon that answer; the status is 0
    QByteArray failed; ///< printed upon a failed call
    int failedStatus;
    bool waits; ///< for its reply; the others end the same whatever becomes of the call
};

/// All but SIG, which calls nothing.
const std::vector<CommandForm> &commandForms();

/// The first form of each command.
std::vector<CommandForm> firstForms();

/// The same of those commands that wait.
std::vector<CommandForm> firstFormsThatWait();

/// SIG, which calls nothing and prints nothing by itself.
const CommandForm &monitorForm();

/// What is typed for a form, to the service "com.varn.tul" at "/".
QByteArrayList requestOf(const CommandForm &form);

/// Lets the service answer every form as its row says.
void answerAll(FakeService &service);
