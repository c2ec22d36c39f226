# cfgmig_shared_library(NAME OBJECTS TARGET EXPORTS FILE [UNDEFINED]): a shared library made of the objects of TARGET that
# lets the symbols in FILE be seen and no others. FILE has a symbol a line, as `nm -DC` writes it; tests/install compares
# it with what is really there. UNDEFINED: symbols may be missing, to be supplied by whatever a program links besides.

function(cfgmig_shared_library name)
  cmake_parse_arguments(PARSE_ARGV 1 library "UNDEFINED" "OBJECTS;EXPORTS" "")
  set(script "${CMAKE_CURRENT_BINARY_DIR}/${name}.map")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${library_EXPORTS}")
  file(READ "${library_EXPORTS}" symbols)
  string(REGEX REPLACE "([^\n]+)\n" "    \"\\1\";\n" symbols "${symbols}")
  file(CONFIGURE OUTPUT "${script}" CONTENT "{\n  global: extern \"C++\" {\n@symbols@  };\n  local: *;\n};\n" @ONLY)

  # A third of the time that the compiler takes, so only where the binary interface is read from it.
  if(CFGMIG_DEBUG_INFORMATION)
    target_compile_options(${library_OBJECTS} PRIVATE -g)
  endif()

  add_library(${name} SHARED $<TARGET_OBJECTS:${library_OBJECTS}>)
  set_target_properties(${name} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${CFGMIG_SOVERSION}
                                           LINK_DEPENDS "${script}")
  target_link_libraries(${name} PUBLIC cfgmig_interfaces PRIVATE cfgmig_shipped)
  target_link_options(${name} PRIVATE "-Wl,--version-script=${script}")
  # Sanitizers leave their own symbols to the program.
  if(NOT library_UNDEFINED AND NOT CFGMIG_SANITIZE)
    target_link_options(${name} PRIVATE -Wl,--no-undefined)
  endif()
endfunction()
