# cfgmig_counted: what links it privately counts which of its lines are run, if the build is for that (scripts/coverage).

add_library(cfgmig_counted INTERFACE)

# Counts end up in the build directory, wherever a program is run and with whatever environment. Four files for each
# program and library: processes add up in them, and wait for each other as long as they do.
if(CFGMIG_COVERAGE)
  target_compile_options(cfgmig_counted INTERFACE
      "-fprofile-instr-generate=${PROJECT_BINARY_DIR}/profiles/%4m.profraw" -fcoverage-mapping)
  add_link_options(-fprofile-instr-generate)
endif()
