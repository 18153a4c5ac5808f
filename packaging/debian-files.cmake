# CPack runs this on the tree that it has staged, a directory a component, before it packs it.

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  set(share ${CPACK_TEMPORARY_DIRECTORY}/${component}${CPACK_PACKAGING_INSTALL_PREFIX}/share)
  # zsh in Debian looks into a directory that packages alone have.
  file(RENAME ${share}/zsh/site-functions ${share}/zsh/vendor-completions)
  file(COPY ${CPACK_MOVRA_CHANGELOG}
    DESTINATION ${share}/doc/${component}
    NO_SOURCE_PERMISSIONS)
  file(GLOB pages ${share}/man/man1/*.1)
  execute_process(
    COMMAND gzip -9n ${share}/doc/${component}/changelog ${pages}
    COMMAND_ERROR_IS_FATAL ANY)
endforeach()
