# What `cmake --install` puts where on Linux, in the components that the packages are cut along: library, dialog,
# command, development. The component itself lies in a folder of its own below the runtime's: nothing links with it, it is loaded
# by the runtime, which looks there (platform/posix/com/server_library.cpp).
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS velandoc LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/velandoc COMPONENT library)
install(TARGETS velandoc_com
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development)
# Found from wherever the whole is unpacked; distributions leave the run paths out (CMAKE_SKIP_INSTALL_RPATH).
set_target_properties(velandoc PROPERTIES INSTALL_RPATH "$ORIGIN/..")
set_target_properties(velandoc_command velandoc_script PROPERTIES
  INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
if(TARGET velandoc_dialog)
  # Beside the component, which loads it.
  set_target_properties(velandoc_dialog PROPERTIES INSTALL_RPATH "$ORIGIN/..")
  install(TARGETS velandoc_dialog LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/velandoc COMPONENT dialog)
endif()
install(TARGETS velandoc_command velandoc_script
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT command)

set(header_dir ${CMAKE_INSTALL_INCLUDEDIR}/velandoc)
install(FILES ${CMAKE_BINARY_DIR}/generated/velandoc_idl.h DESTINATION ${header_dir}
  COMPONENT development)
# com.h and what it includes.
set(com platform/posix/com)
install(FILES ${com}/com.h ${com}/activation.h ${com}/automation.h ${com}/com_error.h
              ${com}/interfaces.h ${com}/system_time.h ${com}/types.h
  DESTINATION ${header_dir}/${com} COMPONENT development)
install(DIRECTORY ${com}/sdk DESTINATION ${header_dir}/${com} COMPONENT development)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/velandoc)
configure_package_config_file(packaging/development/velandocConfig.cmake.in
  ${CMAKE_BINARY_DIR}/velandocConfig.cmake INSTALL_DESTINATION ${package_dir}
  PATH_VARS CMAKE_INSTALL_INCLUDEDIR CMAKE_INSTALL_LIBDIR)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/velandocConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/velandocConfig.cmake ${CMAKE_BINARY_DIR}/velandocConfigVersion.cmake
  DESTINATION ${package_dir} COMPONENT development)
configure_file(packaging/development/velandoc.pc.in ${CMAKE_BINARY_DIR}/velandoc.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/velandoc.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
  COMPONENT development)
