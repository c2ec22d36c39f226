# What is installed besides the tool: libraries, headers, and how other builds find them.

include(CMakePackageConfigHelpers)

set(CFGMIG_INCLUDE_DIRECTORY "${CMAKE_INSTALL_INCLUDEDIR}/cfgmig")
set(CFGMIG_PACKAGE_DIRECTORY "${CMAKE_INSTALL_LIBDIR}/cmake/cfgmig")

# cfgmig_install_library(LIBRARY FILE NAME TARGET NAME DESCRIPTION TEXT HEADERS FILE...): installs the shared library
# LIBRARY as libFILE.so with its headers and FILE.pc; a CMake package knows it as cfgmig::TARGET.
function(cfgmig_install_library library)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "FILE;TARGET;DESCRIPTION" "HEADERS")
  set_target_properties(${library} PROPERTIES OUTPUT_NAME ${arg_FILE} EXPORT_NAME ${arg_TARGET})
  install(TARGETS ${library} EXPORT cfgmig
          LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT libraries NAMELINK_COMPONENT development)
  install(FILES ${arg_HEADERS} DESTINATION "${CFGMIG_INCLUDE_DIRECTORY}" COMPONENT development)

  # Written when it is installed, since only then it is certain where.
  set(file "${CMAKE_CURRENT_BINARY_DIR}/${arg_FILE}.pc")
  install(CODE "
    set(name \"${arg_FILE}\")
    set(description \"${arg_DESCRIPTION}\")
    set(version \"${PROJECT_VERSION}\")
    set(prefix \"\${CMAKE_INSTALL_PREFIX}\")
    set(includedir \"${CFGMIG_INCLUDE_DIRECTORY}\")
    set(libdir \"${CMAKE_INSTALL_LIBDIR}\")
    foreach(directory includedir libdir)
      if(NOT IS_ABSOLUTE \"\${\${directory}}\")
        string(PREPEND \${directory} \"\\\${prefix}/\")
      endif()
    endforeach()
    configure_file(\"${PROJECT_SOURCE_DIR}/cmake/library.pc.in\" \"${file}\" @ONLY)"
    COMPONENT development)
  install(FILES "${file}" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
endfunction()

# find_package(cfgmig), once all libraries have been named.
function(cfgmig_install_package)
  install(EXPORT cfgmig NAMESPACE cfgmig:: FILE cfgmigTargets.cmake DESTINATION "${CFGMIG_PACKAGE_DIRECTORY}"
          COMPONENT development)
  set(config "${PROJECT_BINARY_DIR}/cfgmigConfig.cmake")
  set(version "${PROJECT_BINARY_DIR}/cfgmigConfigVersion.cmake")
  configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/cfgmigConfig.cmake.in" "${config}"
                                INSTALL_DESTINATION "${CFGMIG_PACKAGE_DIRECTORY}"
                                NO_CHECK_REQUIRED_COMPONENTS_MACRO)
  # Until 1.0 another minor version may have another binary interface.
  write_basic_package_version_file("${version}" COMPATIBILITY SameMinorVersion)
  install(FILES "${config}" "${version}" DESTINATION "${CFGMIG_PACKAGE_DIRECTORY}" COMPONENT development)
endfunction()
