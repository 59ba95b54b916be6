# Finds LMDB, the memory-mapped database.
#
#   LMDB::LMDB     the library
#   LMDB::Static   the library to be taken in statically; the same as LMDB::LMDB where there is none

find_path(LMDB_INCLUDE_DIR lmdb.h)
find_library(LMDB_LIBRARY lmdb)
find_library(LMDB_STATIC_LIBRARY liblmdb.a)
mark_as_advanced(LMDB_INCLUDE_DIR LMDB_LIBRARY LMDB_STATIC_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(LMDB REQUIRED_VARS LMDB_LIBRARY LMDB_INCLUDE_DIR)

function(lmdb_target NAME LOCATION)
  if(LMDB_FOUND AND NOT TARGET LMDB::${NAME})
    add_library(LMDB::${NAME} UNKNOWN IMPORTED)
    set_target_properties(LMDB::${NAME} PROPERTIES
      IMPORTED_LOCATION ${LOCATION}
      INTERFACE_INCLUDE_DIRECTORIES ${LMDB_INCLUDE_DIR})
  endif()
endfunction()

lmdb_target(LMDB "${LMDB_LIBRARY}")
if(LMDB_STATIC_LIBRARY)
  lmdb_target(Static "${LMDB_STATIC_LIBRARY}")
else()
  lmdb_target(Static "${LMDB_LIBRARY}")
endif()
