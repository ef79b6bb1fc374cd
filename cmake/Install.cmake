# What `cmake --install` lays down, and the package that find_package(Quoin) finds there:
#   Quoin::host    the embedded host with the host API's headers
#   Quoin::module  the exported classes of the module
#   Quoin::plan    plan reading: walls, openings and rooms from lines
#   Quoin::frame   what every module links in: version stamp, load and unload hooks
include(CMakePackageConfigHelpers)

# What is no part of the program and its libraries is for developers (cmake/Package.cmake).
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME libquoin-dev)

set(QUOIN_HEADERS ${CMAKE_INSTALL_INCLUDEDIR}/quoin)
set(QUOIN_PACKAGE ${CMAKE_INSTALL_LIBDIR}/cmake/Quoin)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/embedded/include/ DESTINATION ${QUOIN_HEADERS}/api
  FILES_MATCHING PATTERN "*.h")

# Of the module's headers those go out that declare something exported, by the mark that
# exports it, and the records that stand in exported signatures.
set(QUOIN_RECORD_HEADERS geometry/WallLineLikeSeg.h)
file(GLOB QUOIN_MODULE_HEADERS CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}
  ${PROJECT_SOURCE_DIR}/module/*.h ${PROJECT_SOURCE_DIR}/geometry/*.h
  ${PROJECT_SOURCE_DIR}/Algorithm/*.h ${PROJECT_SOURCE_DIR}/Algorithm/DrawWallAlgorithm/*.h
  ${PROJECT_SOURCE_DIR}/tools/*.h)
foreach(HEADER ${QUOIN_MODULE_HEADERS})
  file(STRINGS ${PROJECT_SOURCE_DIR}/${HEADER} MARKS REGEX "AFX_EXT_CLASS")
  if(MARKS OR HEADER IN_LIST QUOIN_RECORD_HEADERS)
    # The first folder is an include directory; deeper ones are part of the header's name.
    string(REGEX MATCH "^[^/]+/(.*)$" WHOLE ${HEADER})
    get_filename_component(SUBFOLDER "${CMAKE_MATCH_1}" DIRECTORY)
    install(FILES ${HEADER} DESTINATION ${QUOIN_HEADERS}/module/${SUBFOLDER})
  endif()
endforeach()

# Who starts the host in a program of his own needs its application object: that header and
# the command line's, with all that they include.
set(QUOIN_EMBEDDED_HEADERS embedded/product/HostApplication.h embedded/product/CommandLine.h)
set(INDEX 0)
list(LENGTH QUOIN_EMBEDDED_HEADERS COUNT)
while(INDEX LESS COUNT)
  list(GET QUOIN_EMBEDDED_HEADERS ${INDEX} HEADER)
  file(STRINGS ${PROJECT_SOURCE_DIR}/${HEADER} LINES REGEX "^#include \"(embedded|host)/")
  foreach(LINE ${LINES})
    string(REGEX REPLACE "^#include \"([^\"]+)\".*" "\\1" INCLUDED "${LINE}")
    list(APPEND QUOIN_EMBEDDED_HEADERS ${INCLUDED})
  endforeach()
  list(REMOVE_DUPLICATES QUOIN_EMBEDDED_HEADERS)
  list(LENGTH QUOIN_EMBEDDED_HEADERS COUNT)
  math(EXPR INDEX "${INDEX} + 1")
endwhile()
foreach(HEADER ${QUOIN_EMBEDDED_HEADERS})
  get_filename_component(FOLDER ${HEADER} DIRECTORY)
  install(FILES ${HEADER} DESTINATION ${QUOIN_HEADERS}/${FOLDER})
endforeach()
# The platform's headers go by two names, "host/Log.h" and "Log.h", as one file.
# The project scale is the module's own look-up and stays inside.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/host/ DESTINATION ${QUOIN_HEADERS}/host
  FILES_MATCHING PATTERN "*.h" PATTERN "ProjectScale.h" EXCLUDE)

target_include_directories(quoinhost INTERFACE $<INSTALL_INTERFACE:${QUOIN_HEADERS}>)
target_include_directories(quoinhost_api INTERFACE $<INSTALL_INTERFACE:${QUOIN_HEADERS}/api>)
target_include_directories(quoin_module INTERFACE
  $<INSTALL_INTERFACE:${QUOIN_HEADERS}/module> $<INSTALL_INTERFACE:${QUOIN_HEADERS}/host>)
set_target_properties(quoinhost PROPERTIES EXPORT_NAME host)
set_target_properties(quoinhost_api PROPERTIES EXPORT_NAME api)
set_target_properties(quoin_module PROPERTIES EXPORT_NAME module)
set_target_properties(quoinframe PROPERTIES EXPORT_NAME frame)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/plan/ DESTINATION ${QUOIN_HEADERS}/plan
  FILES_MATCHING PATTERN "*.h")
target_include_directories(quoin_plan INTERFACE $<INSTALL_INTERFACE:${QUOIN_HEADERS}>)
set_target_properties(quoin_plan PROPERTIES EXPORT_NAME plan)

install(TARGETS quoinhost_api quoinhost quoin_module quoin_plan quoinframe EXPORT QuoinTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT quoin
  OBJECTS DESTINATION ${CMAKE_INSTALL_LIBDIR}/quoin)
install(TARGETS quoin_app quoin_commands
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT quoin
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT quoin)
install(EXPORT QuoinTargets NAMESPACE Quoin:: DESTINATION ${QUOIN_PACKAGE})

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/QuoinConfig.cmake.in
  ${PROJECT_BINARY_DIR}/QuoinConfig.cmake INSTALL_DESTINATION ${QUOIN_PACKAGE}
  PATH_VARS QUOIN_HEADERS)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/QuoinConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/QuoinConfig.cmake ${PROJECT_BINARY_DIR}/QuoinConfigVersion.cmake
  DESTINATION ${QUOIN_PACKAGE})
