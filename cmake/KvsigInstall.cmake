# What an embedding program needs, in the standard places. Components follow the packages that a
# distribution makes of them: library, data, development, tool.
include(CMakePackageConfigHelpers)

install(
  TARGETS kvsig
  EXPORT kvsigTargets
  RUNTIME COMPONENT library
  LIBRARY COMPONENT library NAMELINK_COMPONENT development
  ARCHIVE COMPONENT development
  FILE_SET HEADERS
  COMPONENT development)
# What the licences ask to go along: that of kvsig, and those of the headers that the command is
# compiled from. The packages carry them as Debian has it (KvsigPackages.cmake).
install(FILES LICENSE DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT licence)
if(KVSIG_BUILD_TOOL)
  install(FILES tool/NOTICE DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT licence)
endif()
install(FILES ${KVSIG_SHARED_FILES} DESTINATION "${CMAKE_INSTALL_DATADIR}/kvsig" COMPONENT data)

set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/kvsig")
install(EXPORT kvsigTargets NAMESPACE kvsig:: DESTINATION "${package_folder}" COMPONENT development)
get_target_property(library_type kvsig TYPE)
if(library_type STREQUAL "STATIC_LIBRARY")
  set(KVSIG_IS_STATIC ON)
  # A static library hands what it needs on to the program.
  set(KVSIG_PC_REQUIRES "Requires.private: pugixml")
  set(KVSIG_PC_LIBS "Libs.private: -lstdc++ -lm")
  set(KVSIG_PC_CFLAGS " -DKVSIG_STATIC")
else()
  set(KVSIG_IS_STATIC OFF)
endif()
configure_package_config_file(cmake/kvsigConfig.cmake.in kvsigConfig.cmake
                              INSTALL_DESTINATION "${package_folder}")
write_basic_package_version_file(kvsigConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(
  FILES "${CMAKE_CURRENT_BINARY_DIR}/kvsigConfig.cmake"
        "${CMAKE_CURRENT_BINARY_DIR}/kvsigConfigVersion.cmake"
  DESTINATION "${package_folder}"
  COMPONENT development)

# Found from where the file lies, so that an installed tree may be moved.
file(RELATIVE_PATH KVSIG_PREFIX_FROM_PC "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig"
     "${CMAKE_INSTALL_PREFIX}")
cmake_path(NORMAL_PATH KVSIG_PREFIX_FROM_PC)
configure_file(cmake/kvsig.pc.in kvsig.pc @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/kvsig.pc"
        DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
