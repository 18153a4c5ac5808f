// SPDX-License-Identifier: MIT
#include "tests/hostile/requests.h"

#include "tests/hostile/qtwarnings.h"

namespace
{

std::vector<CommandForm> allRequests()
{
    std::vector<CommandForm> all = commandForms();
    for (const CommandForm &form : commandForms()) {
        if (form.words.first() == "GET") {
            for (const char *id : { ":doubleARRAY:", ":uint32ARRAY:", ":int64ARRAY:" }) {
                all.push_back(form);
                all.back().words.last() = id;
            }
        }
    }
    return all;
}

} // namespace

const std::vector<CommandForm> &requests()
{
    static const std::vector<CommandForm> all = allRequests();
    return all;
}

QByteArray faultOf(const CommandForm &request, const Outcome &outcome, bool taken)
{
    if (outcome.status != (taken ? 0 : request.failedStatus)) {
        return "status " + QByteArray::number(outcome.status);
    }
    const QByteArray complaints = withoutAllowedWarnings(outcome.err);
    if (!complaints.isEmpty()) {
        return "on standard error: " + complaints.left(2000);
    }
    // Some forms print nothing of their reply.
    const bool shown = !request.out.isEmpty();
    if (taken ? !shown && !outcome.out.isEmpty() : outcome.out != request.failed) {
        return "on standard output: " + outcome.out.left(2000);
    }
    if (taken && shown && !outcome.out.isEmpty() && outcome.out == request.failed) {
        return "taken for a failure";
    }
    return {};
}
