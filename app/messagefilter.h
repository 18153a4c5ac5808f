// SPDX-License-Identifier: MIT
// What Qt may say on standard error.
#pragma once

/// Keeps off standard error what a service can make Qt say: about a signature without types, which
/// is legal on the bus, and about a name that changed hands while it was looked up. Everything else
/// that Qt says stays as it is.
void installMessageFilter();
