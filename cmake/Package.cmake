# Debian packages, one for each component of Install.cmake; scripts/package builds them.

set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL movra movra-sim)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)

# Each package has a synopsis of its own.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The movra maintainers <movra@movra.invalid>"
  CACHE STRING "Maintainer of the Debian packages: name and address")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)

set(CPACK_DEBIAN_MOVRA_PACKAGE_NAME movra)
set(CPACK_DEBIAN_MOVRA_DESCRIPTION
"command-line client of a service on the D-Bus session bus
One run makes one request to an application service that answers the
interface varn.pim, and prints the answer: read and write items, list them,
start actions, load and save configurations, control notifications and the
debug log. A monitor prints the service's signals.")
# The completions ask with dbus-send.
set(CPACK_DEBIAN_MOVRA_PACKAGE_RECOMMENDS dbus-bin)
set(CPACK_DEBIAN_MOVRA_PACKAGE_SUGGESTS movra-sim)

set(CPACK_DEBIAN_MOVRA-SIM_PACKAGE_NAME movra-sim)
set(CPACK_DEBIAN_MOVRA-SIM_DESCRIPTION
"simulated application service for movra
It owns a name on the D-Bus session bus and answers the whole of the
interface varn.pim out of a catalogue of items, so that requests, scripts and
tests can be tried on a machine without the real service.")
set(CPACK_DEBIAN_MOVRA-SIM_PACKAGE_ENHANCES movra)
# The bus that a command runs on.
set(CPACK_DEBIAN_MOVRA-SIM_PACKAGE_RECOMMENDS dbus-daemon)

# What Debian wants and a plain installation does not have.
string(TIMESTAMP changelog_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(packaging/debian-changelog.in packaging/changelog @ONLY)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/debian-files.cmake)
set(CPACK_MOVRA_CHANGELOG ${PROJECT_BINARY_DIR}/packaging/changelog)

include(CPack)
