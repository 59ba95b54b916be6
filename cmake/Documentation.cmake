# Target docs: the reference documentation in build/<preset>/docs/html.

find_package(Doxygen 1.9 COMPONENTS dot)
if(DOXYGEN_FOUND)
  configure_file(${PROJECT_SOURCE_DIR}/docs/Doxyfile.in ${PROJECT_BINARY_DIR}/docs/Doxyfile @ONLY)
  set(enumerations ${PROJECT_SOURCE_DIR}/os_extensions/bsp/include/BspEnumerations.h)
  add_custom_target(docs
    COMMAND ${CMAKE_COMMAND} -D HEADER=${enumerations} -D OUTPUT=${PROJECT_BINARY_DIR}/docs/enumerations.dox
      -P ${PROJECT_SOURCE_DIR}/cmake/EnumerationReference.cmake
    COMMAND Doxygen::doxygen ${PROJECT_BINARY_DIR}/docs/Doxyfile
    WORKING_DIRECTORY ${PROJECT_BINARY_DIR}/docs
    COMMENT "Writing the reference documentation"
    VERBATIM)
else()
  message(STATUS "No target docs without doxygen and dot")
endif()
