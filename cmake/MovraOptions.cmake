# The compiler options of this project. Every target links movra_options.

option(MOVRA_SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)
option(MOVRA_SINGLE_FILE "Link programs that need no shared library, not even libc" OFF)

add_library(movra_options INTERFACE)
target_compile_features(movra_options INTERFACE cxx_std_17)
target_include_directories(movra_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_definitions(movra_options INTERFACE
  QT_NO_CAST_FROM_ASCII
  QT_NO_CAST_FROM_BYTEARRAY
  QT_NO_CAST_TO_ASCII
  QT_NO_FOREACH
  QT_NO_KEYWORDS
  QT_DISABLE_DEPRECATED_BEFORE=0x050e00)
target_compile_options(movra_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wold-style-cast -Wnon-virtual-dtor
  -Woverloaded-virtual -Wzero-as-null-pointer-constant -Wformat=2 -Wundef
  $<$<CXX_COMPILER_ID:GNU>:-Wsuggest-override;-Wlogical-op;-Wduplicated-cond>)

if(MOVRA_SANITIZE)
  target_compile_options(movra_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(movra_options INTERFACE -fsanitize=address,undefined)
  target_compile_definitions(movra_options INTERFACE MOVRA_SANITIZED)
endif()

if(MOVRA_SINGLE_FILE)
  target_compile_options(movra_options INTERFACE -fPIE -ffunction-sections -fdata-sections)
  target_link_options(movra_options INTERFACE
    -static-pie -s -Wl,--gc-sections -Wl,-z,pack-relative-relocs
    # For bus/singlefile.cpp. The linker takes it from its library although only others call it.
    -Wl,--wrap=getaddrinfo,--wrap=getpwuid_r,--wrap=nl_langinfo,--undefined=__wrap_getaddrinfo
    # The linker would warn of the look-ups of users, groups and hosts in libc, which that file limits.
    -Wl,--no-warnings)
endif()
