// SPDX-License-Identifier: MIT
// The client object with public fields.
#pragma once

#include "app/movra.h"

class OpenMovra : public Movra
{
public:
    OpenMovra()
        : Movra(nullptr)
    {
    }
    using Movra::iface;
    using Movra::lastErrorText;
    using Movra::notifyLog;
};
