# What `cmake --install` lays down, and the package that find_package(Quoin) finds there:
#   Quoin::host    the embedded host with the host API's headers
#   Quoin::module  the exported classes of the module
#   Quoin::frame   what every module links in: version stamp, load and unload hooks
include(CMakePackageConfigHelpers)

set(QUOIN_HEADERS ${CMAKE_INSTALL_INCLUDEDIR}/quoin)
set(QUOIN_PACKAGE ${CMAKE_INSTALL_LIBDIR}/cmake/Quoin)

install(DIRECTORY ${CMAKE_SOURCE_DIR}/embedded/include/ DESTINATION ${QUOIN_HEADERS}/api
  FILES_MATCHING PATTERN "*.h")

# Of the module's headers those go out that declare something exported, by the mark that
# exports it, and the records that stand in exported signatures.
set(QUOIN_RECORD_HEADERS geometry/WallLineLikeSeg.h)
file(GLOB QUOIN_MODULE_HEADERS CONFIGURE_DEPENDS RELATIVE ${CMAKE_SOURCE_DIR}
  ${CMAKE_SOURCE_DIR}/module/*.h ${CMAKE_SOURCE_DIR}/host/*.h ${CMAKE_SOURCE_DIR}/geometry/*.h
  ${CMAKE_SOURCE_DIR}/Algorithm/*.h ${CMAKE_SOURCE_DIR}/Algorithm/DrawWallAlgorithm/*.h
  ${CMAKE_SOURCE_DIR}/tools/*.h)
foreach(HEADER ${QUOIN_MODULE_HEADERS})
  file(STRINGS ${CMAKE_SOURCE_DIR}/${HEADER} MARKS REGEX "AFX_EXT_CLASS|PLATFORM_API")
  if(MARKS OR HEADER IN_LIST QUOIN_RECORD_HEADERS)
    # The first folder is an include directory; deeper ones are part of the header's name.
    string(REGEX REPLACE "^[^/]+/" "" NAME ${HEADER})
    get_filename_component(SUBFOLDER "${NAME}" DIRECTORY)
    install(FILES ${HEADER} DESTINATION ${QUOIN_HEADERS}/module/${SUBFOLDER})
  endif()
endforeach()

target_include_directories(quoinhost_api INTERFACE $<INSTALL_INTERFACE:${QUOIN_HEADERS}/api>)
target_include_directories(quoin_module INTERFACE $<INSTALL_INTERFACE:${QUOIN_HEADERS}/module>)
set_target_properties(quoinhost PROPERTIES EXPORT_NAME host)
set_target_properties(quoinhost_api PROPERTIES EXPORT_NAME api)
set_target_properties(quoin_module PROPERTIES EXPORT_NAME module)
set_target_properties(quoinframe PROPERTIES EXPORT_NAME frame)

install(TARGETS quoinhost_api quoinhost quoin_module quoinframe EXPORT QuoinTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  OBJECTS DESTINATION ${CMAKE_INSTALL_LIBDIR}/quoin)
foreach(TARGET quoin_app quoin_commands)
  if(TARGET ${TARGET})
    install(TARGETS ${TARGET}
      RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
  endif()
endforeach()
install(EXPORT QuoinTargets NAMESPACE Quoin:: DESTINATION ${QUOIN_PACKAGE})

configure_package_config_file(${CMAKE_SOURCE_DIR}/cmake/QuoinConfig.cmake.in
  ${CMAKE_BINARY_DIR}/QuoinConfig.cmake INSTALL_DESTINATION ${QUOIN_PACKAGE})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/QuoinConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/QuoinConfig.cmake ${CMAKE_BINARY_DIR}/QuoinConfigVersion.cmake
  DESTINATION ${QUOIN_PACKAGE})
