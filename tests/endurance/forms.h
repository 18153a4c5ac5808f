// SPDX-License-Identifier: MIT
// Every form that a request may have, against one service that answers them all.
#pragma once

#include "tests/support/movrarun.h"

#include <vector>

/// Tells the service "com.varn.tul" what to answer.
void prepareForForms(FakeService &service);

/// A row for each form; each makes one call at most. They have no `prepare` of their own.
std::vector<MovraRow> forms();
