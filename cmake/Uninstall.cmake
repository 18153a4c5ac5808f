# Removes what the last `cmake --install` of a build directory installed:
#   cmake -D MANIFEST=<build directory>/install_manifest.txt -P Uninstall.cmake
# DESTDIR must be as it was then. Only movra's own directories are removed, and only if they are empty.

if(NOT EXISTS "${MANIFEST}")
  message(FATAL_ERROR "Nothing was installed from this build directory: ${MANIFEST} does not exist")
endif()

file(STRINGS "${MANIFEST}" installed ENCODING UTF-8)
foreach(file IN LISTS installed)
  set(file "$ENV{DESTDIR}${file}")
  if(EXISTS "${file}" OR IS_SYMLINK "${file}")
    message(STATUS "Removing ${file}")
    file(REMOVE "${file}")
  else()
    message(STATUS "Already removed: ${file}")
  endif()
  cmake_path(GET file PARENT_PATH directory)
  file(GLOB rest "${directory}/*")
  while(directory MATCHES "/movra(-sim)?(/docs)?$" AND NOT rest)
    file(REMOVE_RECURSE "${directory}")
    cmake_path(GET directory PARENT_PATH directory)
    file(GLOB rest "${directory}/*")
  endwhile()
endforeach()
