# What is installed, for whom: component runtime (programs that use libbsp), development (who writes
# them) and tools (who works at the command line).

include(CMakePackageConfigHelpers)

get_property(bsp_stand_ins GLOBAL PROPERTY BSP_STAND_INS)

install(TARGETS bsp ${bsp_stand_ins}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)
set(bsp_archives bsp_static)
foreach(stand_in ${bsp_stand_ins})
  list(APPEND bsp_archives ${stand_in}_static)
endforeach()
install(TARGETS ${bsp_archives}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/os_extensions/bsp/include/
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/bsp COMPONENT development
  FILES_MATCHING PATTERN *.h)
# The only header of the platform that a public header includes.
install(FILES ${BSP_HW_VARIANT_HEADER}
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/bsp COMPONENT development)

if(BSP_BUILD_TOOLS)
  set(bsp_programs bsp_tool bsp_diag)
  install(TARGETS ${bsp_programs} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
  install(FILES ${PROJECT_BINARY_DIR}/bin/led ${PROJECT_BINARY_DIR}/bin/rstate
    DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
  set(bsp_manual ${PROJECT_SOURCE_DIR}/docs/man)
  install(FILES ${bsp_manual}/bsp.1 ${bsp_manual}/bsp-diag.1 ${bsp_manual}/led.1 ${bsp_manual}/rstate.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
  set(bsp_completed bsp-diag led rstate)

  # There are boards to make only where the stand-ins serve them.
  if(TARGET bsp_board)
    install(TARGETS bsp_board RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
    list(APPEND bsp_programs bsp_board)
    install(FILES ${bsp_manual}/bsp-board.1
      DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
    install(FILES ${bsp_manual}/board-directory.5
      DESTINATION ${CMAKE_INSTALL_MANDIR}/man5 COMPONENT tools)
    list(APPEND bsp_completed bsp-board)
  endif()

  # bash looks for the completion of a command in a file of the command's name.
  set(bsp_completions ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  install(FILES ${PROJECT_SOURCE_DIR}/packaging/completion/bsp
    DESTINATION ${bsp_completions} COMPONENT tools)
  file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/packaging/completion)
  foreach(name ${bsp_completed})
    set(link ${PROJECT_BINARY_DIR}/packaging/completion/${name})
    file(CREATE_LINK bsp ${link} SYMBOLIC)
    install(FILES ${link} DESTINATION ${bsp_completions} COMPONENT tools)
  endforeach()
endif()

# pkg-config and CMake find everything from where their own file lies, wherever that is.
set(bsp_pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH bsp_prefix_from_pkgconfig /${bsp_pkgconfig_dir} /)
string(REGEX REPLACE "/$" "" bsp_prefix_from_pkgconfig "${bsp_prefix_from_pkgconfig}")
string(JOIN " " bsp_private_libraries ${BSP_PLATFORM_LINK_FLAGS} -lz -lstdc++ -lpthread)
configure_file(
  ${PROJECT_SOURCE_DIR}/packaging/bsp.pc.in ${PROJECT_BINARY_DIR}/packaging/bsp.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/packaging/bsp.pc
  DESTINATION ${bsp_pkgconfig_dir} COMPONENT development)

set(bsp_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/bsp)
configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/packaging/bspConfig.cmake.in ${PROJECT_BINARY_DIR}/packaging/bspConfig.cmake
  INSTALL_DESTINATION ${bsp_cmake_dir}
  PATH_VARS CMAKE_INSTALL_INCLUDEDIR CMAKE_INSTALL_LIBDIR
  NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/packaging/bspConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/packaging/bspConfig.cmake
  ${PROJECT_BINARY_DIR}/packaging/bspConfigVersion.cmake
  DESTINATION ${bsp_cmake_dir} COMPONENT development)

# For who wants nothing but that.
add_custom_target(bsp_installed DEPENDS bsp ${bsp_stand_ins} ${bsp_archives} ${bsp_programs})
