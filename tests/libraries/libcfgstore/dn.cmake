# Tests of the DN module of libraries/libcfgstore. They look behind its header and therefore use the two libraries that
# it stands on directly as well.
find_package(PkgConfig REQUIRED)
pkg_check_modules(LDAP REQUIRED IMPORTED_TARGET ldap lber)
pkg_check_modules(UTF8PROC REQUIRED IMPORTED_TARGET libutf8proc)

add_executable(cfgstore_dn_tests
    "${CMAKE_CURRENT_LIST_DIR}/DnAgreementTest.cpp"
    "${CMAKE_CURRENT_LIST_DIR}/DnAllocationTest.cpp"
    "${CMAKE_CURRENT_LIST_DIR}/DnExamplesTest.cpp"
    "${CMAKE_CURRENT_LIST_DIR}/DnFunctionsTest.cpp"
    "${CMAKE_CURRENT_LIST_DIR}/DnGenerators.cpp"
    "${CMAKE_CURRENT_LIST_DIR}/DnHostileTest.cpp"
    "${CMAKE_CURRENT_LIST_DIR}/DnPropertyTest.cpp"
    "${CMAKE_CURRENT_LIST_DIR}/DnUnicodeTest.cpp"
    "${CMAKE_CURRENT_LIST_DIR}/NormalDnTest.cpp")
target_link_libraries(cfgstore_dn_tests PRIVATE cfgstore cfgmig_settings GTest::gmock_main rapidcheck PkgConfig::LDAP
                                                PkgConfig::UTF8PROC)
gtest_discover_tests(cfgstore_dn_tests DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 300
                     ENVIRONMENT "RC_PARAMS=max_success=300")
