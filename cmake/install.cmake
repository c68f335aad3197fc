# SPDX-License-Identifier: MIT
# What `cmake --install` puts where: program, plugin, the headers that a host includes and how a host finds them, docs.
include(CMakePackageConfigHelpers)

set(CORTANA_PLUGIN_DIR ${CMAKE_INSTALL_LIBDIR}/cortana)
install(TARGETS cortana_host RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS cortana cortana_stage RUNTIME DESTINATION ${CORTANA_PLUGIN_DIR} LIBRARY DESTINATION ${CORTANA_PLUGIN_DIR})
install(FILES contract/host_interface.h contract/host_records.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/cortana/contract)

set(config_dir ${CMAKE_INSTALL_LIBDIR}/cmake/cortana)
configure_package_config_file(cmake/package/cortana-config.cmake.in cortana-config.cmake
  INSTALL_DESTINATION ${config_dir}
  PATH_VARS CMAKE_INSTALL_INCLUDEDIR CORTANA_PLUGIN_DIR
  NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/cortana-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/cortana-config.cmake ${CMAKE_BINARY_DIR}/cortana-config-version.cmake
  DESTINATION ${config_dir})

file(RELATIVE_PATH CORTANA_PC_TO_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(cmake/package/cortana.pc.in cortana.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/cortana.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(FILES ${CMAKE_BINARY_DIR}/manual/cortana.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${CMAKE_BINARY_DIR}/manual/cortana-result.5 DESTINATION ${CMAKE_INSTALL_MANDIR}/man5)
install(FILES packaging/completions/cortana.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
  RENAME cortana)
install(FILES packaging/completions/_cortana DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
install(FILES packaging/completions/cortana.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)

install(FILES README.md CHANGELOG.md CONTRIBUTING.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs FILES_MATCHING
  PATTERN *.md PATTERN *.json PATTERN *.svg PATTERN *.png)
install(DIRECTORY contrib DESTINATION ${CMAKE_INSTALL_DOCDIR})
