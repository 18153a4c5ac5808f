# Installs two components, which are also the two Debian packages: movra, and movra-sim with the files of
# the simulated service.

foreach(program IN ITEMS movra movra-sim)
  set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME ${program})
  configure_file(man/${program}.1.in man/${program}.1 @ONLY)
  install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(FILES ${PROJECT_BINARY_DIR}/man/${program}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  # The page names files below the prefix, which cmake --install may change.
  install(CODE "
    set(PROJECT_VERSION ${PROJECT_VERSION})
    set(CMAKE_INSTALL_FULL_DATADIR \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_DATADIR}\")
    configure_file(\"${PROJECT_SOURCE_DIR}/man/${program}.1.in\"
      \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_MANDIR}/man1/${program}.1\" @ONLY)")
  install(FILES LICENSE
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${program}
    RENAME copyright)
  # Each completion finds its candidates script at ../../${program}.
  install(FILES completions/${program}.bash
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
    RENAME ${program})
  install(FILES completions/_${program} DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
  install(FILES completions/${program}.fish
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endforeach()

set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME movra)
install(PROGRAMS completions/candidates DESTINATION ${CMAKE_INSTALL_DATADIR}/movra)
install(FILES bus/varn.pim.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/dbus-1/interfaces)
install(FILES README.md CHANGELOG.md SECURITY.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/movra)
# In docs/ next to the README, as in the sources, so that links and pictures work.
file(GLOB documents CONFIGURE_DEPENDS docs/*.md docs/*.svg docs/*.csv)
list(FILTER documents EXCLUDE REGEX "/(catalog.md|layout.svg|request.svg)$")
install(FILES ${documents} DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/movra/docs)

set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME movra-sim)
install(FILES sim/catalog.json sim/catalog.schema.json sim/gateway.json
  DESTINATION ${CMAKE_INSTALL_DATADIR}/movra-sim)
install(PROGRAMS completions/sim-candidates DESTINATION ${CMAKE_INSTALL_DATADIR}/movra-sim)
install(FILES docs/catalog.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/movra-sim)
# The README links to docs/catalog.md. The symbolic link belongs to the component of its target.
file(CREATE_LINK ../../movra-sim/catalog.md ${PROJECT_BINARY_DIR}/catalog.md SYMBOLIC)
install(FILES ${PROJECT_BINARY_DIR}/catalog.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/movra/docs)

unset(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME)

add_custom_target(uninstall
  COMMAND ${CMAKE_COMMAND} -D MANIFEST=${PROJECT_BINARY_DIR}/install_manifest.txt
    -P ${PROJECT_SOURCE_DIR}/cmake/Uninstall.cmake
  VERBATIM)
