# Debian packages of an installed tree, by CPack: quoin (the program and its libraries), libquoin-dev
# (headers and CMake package) and python3-quoin. For a tree that is configured for /usr.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quoin)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "Quoin's developers <quoin@localhost>")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL quoin libquoin-dev)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})

set(CPACK_DEBIAN_QUOIN_PACKAGE_NAME quoin)
set(CPACK_DEBIAN_QUOIN_DESCRIPTION "wall geometry toolkit for architectural plan drawings
 Breaks, draws, merges and outlines wall lines in DXF and DWG drawings, finds
 walls and rooms, and builds bodies; what it does not change stays bit for bit.")
set(CPACK_DEBIAN_QUOIN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_QUOIN_PACKAGE_RECOMMENDS "fonts-dejavu-core, fonts-liberation")

string(TOUPPER libquoin-dev DEV)
set(CPACK_DEBIAN_${DEV}_PACKAGE_NAME libquoin-dev)
set(CPACK_DEBIAN_${DEV}_DESCRIPTION "wall geometry toolkit: headers and CMake package
 For modules of a CAD host, and programs that embed one.")
set(CPACK_DEBIAN_${DEV}_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_${DEV}_PACKAGE_DEPENDS "quoin (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_${DEV}_PACKAGE_SHLIBDEPS OFF)

if(QUOIN_PYTHON_PACKAGE)
  list(APPEND CPACK_COMPONENTS_ALL python3-quoin)
  string(TOUPPER python3-quoin PYTHON3)
  math(EXPR NEXT_MINOR "${Python_VERSION_MINOR} + 1")
  set(CPACK_DEBIAN_${PYTHON3}_PACKAGE_NAME python3-quoin)
  set(CPACK_DEBIAN_${PYTHON3}_DESCRIPTION "wall geometry toolkit: the Python package
 Arrays of lines in and out, and drawings as documents.")
  set(CPACK_DEBIAN_${PYTHON3}_PACKAGE_SECTION python)
  set(CPACK_DEBIAN_${PYTHON3}_PACKAGE_CONTROL_EXTRA
    ${PROJECT_SOURCE_DIR}/cmake/debian/postinst;${PROJECT_SOURCE_DIR}/cmake/debian/prerm)
  set(CPACK_DEBIAN_${PYTHON3}_PACKAGE_DEPENDS
    "quoin (= ${PROJECT_VERSION}), python3 (>= ${Python_VERSION_MAJOR}.${Python_VERSION_MINOR}), python3 (<< ${Python_VERSION_MAJOR}.${NEXT_MINOR}), python3-numpy")
endif()
include(CPack)
