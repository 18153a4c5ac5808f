// SPDX-License-Identifier: MIT
// Only in the single files, which contain libc: where they differ from the shared libc.
#include <clocale>

#include <nss.h>

namespace
{

/// Users and hosts are looked up in the system's files and by DNS. For other sources that
/// nsswitch.conf names, libc would load libraries, which need the version of libc that they were
/// built with. This happens before main(), so no look-up can be earlier.
[[maybe_unused]] const bool areLookupsLimited = __nss_configure_lookup("passwd", "files") == 0
    && __nss_configure_lookup("hosts", "files dns") == 0;

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's option --wrap defines these names.

extern "C" char *__real_setlocale(int category, const char *locale);

/// Replaces the setlocale() that QCoreApplication calls. Nothing in the programs depends on the
/// other ten categories, and each of them takes five system calls.
extern "C" char *__wrap_setlocale(int category, const char *locale)
{
    if (category == LC_ALL) {
        __real_setlocale(LC_MESSAGES, locale);
        category = LC_CTYPE;
    }
    return __real_setlocale(category, locale);
}

// NOLINTEND(bugprone-reserved-identifier)
