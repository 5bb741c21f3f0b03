# Debian packages of what was configured for /usr; see script/package.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kvsig)
set(CPACK_PACKAGE_VENDOR "kvsig contributors")
set(CPACK_PACKAGE_CONTACT "kvsig contributors <kvsig@localhost>")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL library data development tool)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")

# The package of a library is named after its SONAME, so that two of them can lie side by side; what
# does not carry the number lies in the package of data.
set(library_package "libkvsig001-${KVSIG_ABI_VERSION}")
set(same_build "(= ${PROJECT_VERSION})")

function(kvsig_debian_package component name section description depends)
  string(TOUPPER "${component}" upper)
  set(prefix "CPACK_DEBIAN_${upper}")
  set(${prefix}_PACKAGE_NAME "${name}" PARENT_SCOPE)
  set(${prefix}_PACKAGE_SECTION "${section}" PARENT_SCOPE)
  set(${prefix}_DESCRIPTION "${description}" PARENT_SCOPE)
  set(${prefix}_PACKAGE_DEPENDS "${depends}" PARENT_SCOPE)
  set(copyright "${PROJECT_BINARY_DIR}/copyright/${name}")
  file(READ "${PROJECT_SOURCE_DIR}/LICENSE" licence)
  if(component STREQUAL "tool")
    file(READ "${PROJECT_SOURCE_DIR}/tool/NOTICE" notice)
    string(APPEND licence "\n" "${notice}")
  endif()
  file(CONFIGURE OUTPUT "${copyright}" CONTENT "${licence}" @ONLY)
  # Only with the component: an installation as a whole has LICENSE and NOTICE.
  install(FILES "${copyright}" DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/${name}"
          COMPONENT "${component}" RENAME copyright EXCLUDE_FROM_ALL)
endfunction()

kvsig_debian_package(library ${library_package} libs "The shared library."
                     "kvsig-data (>= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
kvsig_debian_package(data kvsig-data science "Montages that the library finds by name." "")
set(CPACK_DEBIAN_DATA_PACKAGE_ARCHITECTURE all)
kvsig_debian_package(development libkvsig-dev libdevel "Headers, CMake package and pkg-config file, to compile programs with."
                     "${library_package} ${same_build}")
kvsig_debian_package(tool kvsig science "The command that shows, checks, exports and draws recordings."
                     "${library_package} ${same_build}")
set(CPACK_DEBIAN_TOOL_PACKAGE_SHLIBDEPS ON)
include(CPack)
