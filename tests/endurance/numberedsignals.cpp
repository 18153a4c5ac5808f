// SPDX-License-Identifier: MIT
#include "tests/endurance/numberedsignals.h"

#include "tests/support/signalforms.h"

namespace
{

const SignalForm &formOf(int number)
{
    return signalForms[static_cast<std::size_t>(number) % signalForms.size()];
}

} // namespace

void emitNumbered(FakeService &service, int number)
{
    const SignalForm &form = formOf(number);
    service.emitSignal(form.member, QByteArray(form.body).replace("%1", QByteArray::number(number)),
                       "/", "varn.pim", FakeService::After::MoreFollows);
}

QByteArray numberedLine(int number)
{
    return QByteArray(formOf(number).line).replace("%1", QByteArray::number(number));
}
