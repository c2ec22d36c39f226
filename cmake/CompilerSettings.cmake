# Settings that every target of the project shares. Targets link cfgmig_settings privately.

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "" FORCE)
endif()

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

add_library(cfgmig_settings INTERFACE)
target_compile_options(cfgmig_settings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
                                                 -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-qual -Wformat=2)
# GCC 12 takes a literal in front of a temporary string for overlapping memory when it optimizes (GCC bug 105651).
target_compile_options(cfgmig_settings INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
if(CFGMIG_WARNINGS_AS_ERRORS)
  target_compile_options(cfgmig_settings INTERFACE -Werror)
endif()

if(CFGMIG_SANITIZE)
  add_compile_options(-fsanitize=${CFGMIG_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${CFGMIG_SANITIZE})
endif()
