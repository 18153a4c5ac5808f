// SPDX-License-Identifier: MIT
// Only in the single files, which contain libc and a Qt without ICU. The linker's option --wrap
// directs calls of libc's functions by Qt and libdbus to this file.
#include <cstring>

#include <langinfo.h>
#include <netdb.h>
#include <nss.h>
#include <pwd.h>

namespace
{

/// Users, their groups and hosts are looked up in the system's files and by DNS. For other sources
/// that nsswitch.conf names, libc would load libraries, which need the version of libc that they
/// were built with.
void limitLookups()
{
    // Not at the start of the program: libc then reads nsswitch.conf, which few runs need.
    [[maybe_unused]] static const bool areLimited = __nss_configure_lookup("passwd", "files") == 0
        && __nss_configure_lookup("group", "files") == 0
        && __nss_configure_lookup("initgroups", "files") == 0
        && __nss_configure_lookup("hosts", "files dns") == 0;
}

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's option defines these names.

extern "C" {

decltype(getaddrinfo) __real_getaddrinfo;
decltype(getpwuid_r) __real_getpwuid_r;
decltype(nl_langinfo) __real_nl_langinfo;

int __wrap_getaddrinfo(const char *host, const char *service, const addrinfo *hints,
                       addrinfo **result)
{
    limitLookups();
    return __real_getaddrinfo(host, service, hints, result);
}

int __wrap_getpwuid_r(uid_t user, passwd *entry, char *buffer, size_t size, passwd **result)
{
    limitLookups();
    return __real_getpwuid_r(user, entry, buffer, size, result);
}

/// The encoding of the C locale is UTF-8, as in a Qt with ICU. Qt would take Latin-1.
char *__wrap_nl_langinfo(nl_item item)
{
    static char utf8[] = "UTF-8";
    char *const text = __real_nl_langinfo(item);
    return std::strcmp(text, "ANSI_X3.4-1968") == 0 ? utf8 : text;
}
}

// NOLINTEND(bugprone-reserved-identifier)
