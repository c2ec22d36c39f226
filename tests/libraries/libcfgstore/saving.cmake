# Tests of what the store owes the file: saving, copying, restoring.
add_executable(cfgstore_saving_tests
    AccessListTest.cpp
    AtomicFileFaultTest.cpp
    FileRestoreTest.cpp
    FileStagingTest.cpp
    FullDiskTest.cpp
    KilledSaveTest.cpp
    LeftoverTest.cpp
    PipeTest.cpp
    RefusedSaveTest.cpp
    SaveAheadTest.cpp
    SaveTest.cpp
    SavedAttributesTest.cpp
    TestAttributes.cpp
    TestStore.cpp
    TwoWritersTest.cpp)
target_link_libraries(cfgstore_saving_tests PRIVATE cfgmig_settings cfgstore GTest::gmock GTest::gtest_main)
gtest_discover_tests(cfgstore_saving_tests DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 120)
