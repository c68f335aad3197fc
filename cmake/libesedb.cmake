# SPDX-License-Identifier: MIT
# libesedb::libesedb: the static library that packaging/build_libesedb.sh made, else the system's when new enough. Its
# reading through handles of libbfio shows in its header only with HAVE_LIBBFIO.
find_library(LIBESEDB_STATIC NAMES libesedb.a PATHS ${CMAKE_SOURCE_DIR}/build/deps/libesedb/lib NO_DEFAULT_PATH)
if(LIBESEDB_STATIC)
  find_package(Threads REQUIRED)
  find_path(LIBBFIO_INCLUDE libbfio.h REQUIRED) # of libbfio only that: the static library holds its own
  add_library(libesedb::libesedb STATIC IMPORTED)
  set_target_properties(libesedb::libesedb PROPERTIES
    IMPORTED_LOCATION ${LIBESEDB_STATIC}
    INTERFACE_INCLUDE_DIRECTORIES "${CMAKE_SOURCE_DIR}/build/deps/libesedb/include;${LIBBFIO_INCLUDE}"
    INTERFACE_COMPILE_DEFINITIONS HAVE_LIBBFIO
    INTERFACE_LINK_LIBRARIES Threads::Threads)
else()
  pkg_check_modules(libesedb REQUIRED IMPORTED_TARGET libesedb>=20240420 libbfio)
  target_compile_definitions(PkgConfig::libesedb INTERFACE HAVE_LIBBFIO)
  add_library(libesedb::libesedb ALIAS PkgConfig::libesedb)
endif()
