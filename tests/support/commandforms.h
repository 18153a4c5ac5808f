// SPDX-License-Identifier: MIT
// Every command form: what is typed, what it sends, and what it prints when its call succeeds and
// when it fails. The table also has the requests that the commands reject.
#pragma once

#include <QByteArray>
#include <QByteArrayList>

#include <vector>

class FakeService;

/// A request as it is typed after service and path, and its possible outcomes.
struct CommandForm {
    /// The words as a pattern: any word fits `<word>`, any word that begins with "CONFIG" fits
    /// `CONFIG*S`, and every other word must be typed exactly. Further words change nothing.
    const char *name;
    QByteArrayList words; ///< an example: the pattern without its signs
    QByteArray call; ///< what reaches the service; empty for a rejected request and for SIG
    QByteArray member; ///< of the call
    QByteArray answer; ///< of the service, in GVariant text
    QByteArray signature; ///< of the answer; a call whose answer does not begin with it has failed
    QByteArray out; ///< printed after that answer; the status is 0
    QByteArray failed; ///< printed after a failed call, or for a rejected request
    int failedStatus;
    bool waits; ///< for its reply; the outcome of the other forms does not depend on the reply
};

/// The forms that call the service, in the order of the command table.
const std::vector<CommandForm> &commandForms();

/// The first form of each command.
std::vector<CommandForm> firstForms();

/// The first form of each command that waits.
std::vector<CommandForm> firstFormsThatWait();

/// SIG, which sends no call and prints only signals.
const CommandForm &monitorForm();

/// All command words, in the order of the command table.
QByteArrayList commandWords();

/// The form that fits the words after service and path; it has no call if they are rejected.
CommandForm formOf(const QByteArrayList &words);

/// The arguments for a form, with the service "com.varn.tul" at "/".
QByteArrayList requestOf(const CommandForm &form);

/// Sets the answer of the service to every form.
void answerAll(FakeService &service);
