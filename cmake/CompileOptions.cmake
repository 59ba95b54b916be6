# What every target of the project is compiled with.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(THREADS_PREFER_PTHREAD_FLAG ON)
find_package(Threads REQUIRED)

# Assertions are part of the interface: they abort in every build type.
foreach(language C CXX)
  foreach(type RELEASE RELWITHDEBINFO MINSIZEREL)
    string(REPLACE "-DNDEBUG" "" CMAKE_${language}_FLAGS_${type} "${CMAKE_${language}_FLAGS_${type}}")
  endforeach()
endforeach()

add_library(bsp_compile_options INTERFACE)
target_compile_definitions(bsp_compile_options INTERFACE _GNU_SOURCE _FILE_OFFSET_BITS=64)
target_compile_options(bsp_compile_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  # Assertions and trace headers show paths from the repository's root.
  "-ffile-prefix-map=${PROJECT_SOURCE_DIR}/="
  -ffunction-sections -fdata-sections)
target_link_options(bsp_compile_options INTERFACE -Wl,--gc-sections)
target_link_libraries(bsp_compile_options INTERFACE Threads::Threads)
if(BSP_WERROR)
  target_compile_options(bsp_compile_options INTERFACE -Werror)
endif()
if(BSP_SANITIZE)
  target_compile_options(bsp_compile_options INTERFACE
    -fsanitize=${BSP_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(bsp_compile_options INTERFACE -fsanitize=${BSP_SANITIZE})
endif()

# What is compiled with these is what evidence/coverage counts.
add_library(bsp_counted_options INTERFACE)
target_link_libraries(bsp_counted_options INTERFACE bsp_compile_options)
if(BSP_COVERAGE)
  # Counters live in mapped files, so that programs that are killed or replaced are counted too.
  set(BSP_PROFILES ${CMAKE_BINARY_DIR}/profiles)
  target_compile_options(bsp_counted_options INTERFACE
    "-fprofile-instr-generate=${BSP_PROFILES}/%m%c.profraw" -fcoverage-mapping
    "SHELL:-mllvm -runtime-counter-relocation")
  target_link_options(bsp_counted_options INTERFACE -fprofile-instr-generate)
endif()
