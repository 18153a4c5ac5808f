// SPDX-License-Identifier: MIT
#include "tests/hostile/lies.h"

#include "tests/hostile/randomreply.h"
#include "tests/support/setting.h"

#include <QTest>

namespace
{

int timesOf(Lie lie)
{
    const int runs = setting("MOVRA_HOSTILE_RUNS", 200);
    return lie == Lie::Reply ? runs : lie == Lie::ReplyTwice ? runs / 10 : runs / 4;
}

} // namespace

void lieAbout(FakeService &service, const char *member, const char *signature, Lie lie,
              const std::function<void(bool taken, const QByteArray &answer)> &check)
{
    RandomReplies replies(static_cast<unsigned>(setting("MOVRA_HOSTILE_SEED", 1)));
    for (int left = timesOf(lie); left > 0 && !QTest::currentTestFailed(); --left) {
        if (lie == Lie::Error) {
            // Honest errors carry one string.
            const RandomReply reply = replies.next("s");
            const QByteArray name = replies.errorName();
            service.refuseWith(member, name, reply.text);
            check(false, name + ' ' + reply.text);
            continue;
        }
        const RandomReply reply = replies.next(signature);
        if (lie == Lie::Reply) {
            service.answer(member, reply.text);
        } else {
            service.answerTwice(member, reply.text);
        }
        check(reply.signature.startsWith(signature), reply.text);
    }
}
