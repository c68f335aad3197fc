# SPDX-License-Identifier: MIT
# libesedb::libesedb: the static library that packaging/build_libesedb.sh made, else the system's when new enough.
find_library(LIBESEDB_STATIC NAMES libesedb.a PATHS ${CMAKE_SOURCE_DIR}/build/deps/libesedb/lib NO_DEFAULT_PATH)
if(LIBESEDB_STATIC)
  find_package(Threads REQUIRED)
  add_library(libesedb::libesedb STATIC IMPORTED)
  set_target_properties(libesedb::libesedb PROPERTIES
    IMPORTED_LOCATION ${LIBESEDB_STATIC}
    INTERFACE_INCLUDE_DIRECTORIES ${CMAKE_SOURCE_DIR}/build/deps/libesedb/include
    INTERFACE_LINK_LIBRARIES Threads::Threads)
else()
  pkg_check_modules(libesedb REQUIRED IMPORTED_TARGET libesedb>=20240420)
  add_library(libesedb::libesedb ALIAS PkgConfig::libesedb)
endif()
