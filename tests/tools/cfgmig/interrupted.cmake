# The tool under strace, which ends it or makes it fail at each system call in turn. A sanitizer's tool cannot be traced.
if(NOT CFGMIG_SANITIZE)
  add_executable(cfgmig_interrupted_test InterruptedProcessTest.cpp ToolProcess.cpp TracedTool.cpp Workspace.cpp)
  target_link_libraries(cfgmig_interrupted_test PRIVATE cfgmig_settings GTest::gmock_main)
  target_compile_definitions(cfgmig_interrupted_test PRIVATE CFGMIG_TOOL="$<TARGET_FILE:cfgmig_tool>")
  add_dependencies(cfgmig_interrupted_test cfgmig_tool)
  gtest_discover_tests(cfgmig_interrupted_test DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 300)
endif()
