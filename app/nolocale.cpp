// SPDX-License-Identifier: MIT
// Only in the single file.

/// Replaces the setlocale() that QCoreApplication calls, and does nothing: no text of movra depends
/// on the locale, and to read it takes about 70 system calls.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the linker's option --wrap defines the name.
extern "C" char *__wrap_setlocale(int /*category*/, const char * /*locale*/)
{
    return nullptr;
}
