# What `cmake --install` lays down, in three components that are also the three Debian packages:
# runtime (the shared library), development (headers, CMake and pkg-config files) and tools.
include( CMakePackageConfigHelpers )

set( configDir ${CMAKE_INSTALL_LIBDIR}/cmake/Xcvr )
set( pkgConfigDir ${CMAKE_INSTALL_LIBDIR}/pkgconfig )

install( TARGETS Xcvr EXPORT XcvrTargets
   LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
   FILE_SET HEADERS COMPONENT development
   INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} )
install( EXPORT XcvrTargets NAMESPACE Xcvr:: DESTINATION ${configDir} COMPONENT development )

configure_package_config_file( cmake/XcvrConfig.cmake.in XcvrConfig.cmake
   INSTALL_DESTINATION ${configDir} )
# Before version 1 a new minor version may change the interface.
write_basic_package_version_file( XcvrConfigVersion.cmake COMPATIBILITY SameMinorVersion )
install(
   FILES ${CMAKE_CURRENT_BINARY_DIR}/XcvrConfig.cmake
         ${CMAKE_CURRENT_BINARY_DIR}/XcvrConfigVersion.cmake
   DESTINATION ${configDir} COMPONENT development )

# Found through its own place, so that an installed tree can be moved as a whole.
cmake_path( SET XCVR_PC_TO_PREFIX /prefix )
cmake_path( RELATIVE_PATH XCVR_PC_TO_PREFIX BASE_DIRECTORY /prefix/${pkgConfigDir} )
configure_file( cmake/xcvr.pc.in xcvr.pc @ONLY )
install( FILES ${CMAKE_CURRENT_BINARY_DIR}/xcvr.pc
   DESTINATION ${pkgConfigDir} COMPONENT development )

install( FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libxcvr${PROJECT_VERSION_MAJOR}
   RENAME copyright COMPONENT runtime )
install( FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libxcvr-dev
   RENAME copyright COMPONENT development )

if( XCVR_BUILD_TOOL )
   # An installed tree that is moved as a whole keeps working; system packages switch this off.
   set_target_properties( xcvr-tool PROPERTIES
      INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}" )
   install( TARGETS xcvr-tool RUNTIME COMPONENT tools )
   install( FILES docs/man/xcvr.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools )
   install( FILES tools/xcvr/completion/xcvr.bash
      DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME xcvr
      COMPONENT tools )
   install( DIRECTORY examples/modules
      DESTINATION ${CMAKE_INSTALL_DATADIR}/xcvr/examples COMPONENT tools )
   install( FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/xcvr-tools
      RENAME copyright COMPONENT tools )
endif()

if( PROJECT_IS_TOP_LEVEL )
   include( cmake/XcvrPackages.cmake )
endif()
