# What holds for everything that is installed: hardened, and the same bytes wherever it is built. Targets that are
# installed link cfgmig_shipped privately in place of cfgmig_settings.

include(CheckCXXCompilerFlag)
include(CheckPIESupported)

check_pie_supported(LANGUAGES CXX)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

add_library(cfgmig_shipped INTERFACE)
target_link_libraries(cfgmig_shipped INTERFACE cfgmig_settings cfgmig_counted)

# Sanitizers see more than these, and do not go together with some of them. What concerns the optimizer is left out of
# debug builds.
if(NOT CFGMIG_SANITIZE)
  foreach(flag -fstack-protector-strong -fstack-clash-protection -fcf-protection)
    string(MAKE_C_IDENTIFIER "CFGMIG_HAS${flag}" has)
    check_cxx_compiler_flag("${flag}" ${has})
    if(${has})
      target_compile_options(cfgmig_shipped INTERFACE "${flag}")
    endif()
  endforeach()
  # A level that the C library does not know is taken for the highest that it knows.
  target_compile_options(cfgmig_shipped INTERFACE "$<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>")
  target_link_options(cfgmig_shipped INTERFACE -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
endif()

# Names of files end up in debug information and in messages of the C library: they are given from the source directory
# on. In a debug build a debugger is to find them. The last map that fits is the one that is used.
target_compile_options(cfgmig_shipped INTERFACE
    "$<$<NOT:$<CONFIG:Debug>>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.;-ffile-prefix-map=${PROJECT_BINARY_DIR}=./build>")

# Programs find the libraries in the build tree by a path from their own place on, so that it does not matter where that
# is; an installed one likewise, unless the libraries are where the system looks for them anyway.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
set(CFGMIG_INSTALLED_RPATH "")
if(CFGMIG_RELOCATABLE)
  file(RELATIVE_PATH libraries_from_programs "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
  set(CFGMIG_INSTALLED_RPATH "$ORIGIN/${libraries_from_programs}")
endif()
