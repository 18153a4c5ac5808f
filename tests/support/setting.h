// SPDX-License-Identifier: MIT
// How long a test is, from the environment.
#pragma once

#include <QtGlobal>

/// The number in an environment variable, or `usual` if there is none.
inline int setting(const char *variable, int usual)
{
    return qEnvironmentVariableIsSet(variable) ? qEnvironmentVariableIntValue(variable) : usual;
}
