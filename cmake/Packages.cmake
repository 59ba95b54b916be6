# Debian packages; packaging/make-packages makes them all.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "${BSP_MAINTAINER}")
set(CPACK_PACKAGE_CONTACT "${BSP_MAINTAINER}")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
if(CMAKE_LIBRARY_ARCHITECTURE STREQUAL "arm-linux-gnueabihf")
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
endif()

# Written by hand: dpkg-shlibdeps knows the libraries of this machine only. A test compares them with
# what the files need.
set(bsp_libraries "libc6 (>= 2.36), zlib1g (>= 1:1.2.13)")
set(bsp_version "${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libbsp${BSP_SOVERSION})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS 
  "${bsp_libraries}, libgcc-s1 (>= 12), libstdc++6 (>= 12)")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/debian/triggers)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION
  "board-support layer: shared library\nAnswers what hardware a board has, and keeps small objects over warm restarts.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libbsp-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libbsp${BSP_SOVERSION} (= ${bsp_version})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "zlib1g-dev")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
  "board-support layer: development files\nHeaders for C and C++, static libraries, and files for pkg-config and CMake.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME bsp-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${bsp_libraries}")
set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS bubblewrap)
set(CPACK_DEBIAN_TOOLS_DESCRIPTION
  "board-support layer: command-line tools\nAsk and set what a board is, set its LEDs, step R-states, and simulate boards.")

include(CPack)
