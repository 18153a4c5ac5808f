// SPDX-License-Identifier: MIT
// The signals that the monitor prints, and their lines.
#pragma once

#include <array>

struct SignalForm {
    const char *member;
    const char *signature; ///< of the body on the wire
    const char *signal; ///< of the proxy, as in its meta-object
    const char *slot; ///< of the client; prints the line
    const char *body; ///< in GVariant text; %1 is replaced by a text
    const char *line; ///< that the monitor prints for the body
};

/// In the order in which SIG connects them.
// clang-format off
constexpr std::array<SignalForm, 8> signalForms { {
    { "SigAlarm", "s", "SigAlarm(QString)", "sigAlarmSlot(QString)",
      "('%1',)", "===Client alarmSlot  msg=%1\n" },
    { "SigDBusServerClosing", "s", "SigDBusServerClosing(QString)",
      "sigDBusServerClosingSlot(QString)", "('%1',)", "===Client sigDBusServerClosingSlot  msg=%1\n" },
    { "SigError", "s", "SigError(QString)", "sigErrorSlot(QString)",
      "('%1',)", "===Client sigErrorSlot  msg=%1\n" },
    { "SigInfo", "s", "SigInfo(QString)", "sigInfoSlot(QString)",
      "('%1',)", "===Client sigInfoSlot  msg=%1\n" },
    { "SigTestComplete", "s", "SigTestComplete(QString)", "sigTestCompleteSlot(QString)",
      "('%1',)", "===Client sigTestCompleteSlot  msg=%1\n" },
    { "SigUpdate", "s", "SigUpdate(QString)", "sigUpdateSlot(QString)",
      "('%1',)", "===Client sigUpdateSlot  msg=%1\n" },
    { "SigTestCompleteWithData", "sad", "SigTestCompleteWithData(QString,std::vector<double>)",
      "sigTestCompleteWithDataSlot(QString,std::vector<double>)",
      "('%1', [0.5])", "sigTestCompleteWithDataSlot double msg=%1 size=1 data[0]=0.5\n" },
    { "SigTestCompleteWithData", "sau", "SigTestCompleteWithData(QString,std::vector<uint32_t>)",
      "sigTestCompleteWithDataSlot(QString,std::vector<uint32_t>)",
      "('%1', [uint32 7])", "sigTestCompleteWithDataSlot uint32_t msg=%1 size=1 data[0]=7\n" },
} };
// clang-format on
