// SPDX-License-Identifier: MIT
#include "tests/endurance/numberedsignals.h"

#include <array>

namespace
{

struct Kind {
    const char *member;
    const char *body; ///< GVariant text
    const char *line;
};

// clang-format off
constexpr std::array<Kind, 8> kinds { {
    { "SigAlarm", "('%1',)", "===Client alarmSlot  msg=%1\n" },
    { "SigDBusServerClosing", "('%1',)", "===Client sigDBusServerClosingSlot  msg=%1\n" },
    { "SigError", "('%1',)", "===Client sigErrorSlot  msg=%1\n" },
    { "SigInfo", "('%1',)", "===Client sigInfoSlot  msg=%1\n" },
    { "SigTestComplete", "('%1',)", "===Client sigTestCompleteSlot  msg=%1\n" },
    { "SigUpdate", "('%1',)", "===Client sigUpdateSlot  msg=%1\n" },
    { "SigTestCompleteWithData", "('%1', [0.5])",
      "sigTestCompleteWithDataSlot double msg=%1 size=1 data[0]=0.5\n" },
    { "SigTestCompleteWithData", "('%1', [uint32 7])",
      "sigTestCompleteWithDataSlot uint32_t msg=%1 size=1 data[0]=7\n" },
} };
// clang-format on

const Kind &kindOf(int number)
{
    return kinds[static_cast<std::size_t>(number) % kinds.size()];
}

} // namespace

void emitNumbered(FakeService &service, int number)
{
    const Kind &kind = kindOf(number);
    service.emitSignal(kind.member, QByteArray(kind.body).replace("%1", QByteArray::number(number)),
                       "/", "varn.pim", FakeService::After::MoreFollows);
}

QByteArray numberedLine(int number)
{
    return QByteArray(kindOf(number).line).replace("%1", QByteArray::number(number));
}
