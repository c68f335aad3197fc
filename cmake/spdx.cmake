# SPDX-License-Identifier: MIT
# cortana.spdx: the list of what is linked in statically, with licences, as SPDX 2.3 tags and values. Its date is that of
# the package (SOURCE_DATE_EPOCH) where one is made, so that it is the same each time.
set(spdx_file ${CMAKE_BINARY_DIR}/cortana.spdx)
set(spdx_parts_file ${CMAKE_SOURCE_DIR}/build/deps/libesedb/parts)
set(spdx_text "")

# cortana_spdx_package(<name> <version> <licence> <copyright>): one more part of the list.
function(cortana_spdx_package name version licence copyright)
  string(APPEND spdx_text "
PackageName: ${name}
SPDXID: SPDXRef-${name}
PackageVersion: ${version}
PackageDownloadLocation: NOASSERTION
FilesAnalyzed: false
PackageLicenseConcluded: ${licence}
PackageLicenseDeclared: ${licence}
PackageCopyrightText: <text>${copyright}</text>
")
  if(NOT name STREQUAL "cortana")
    string(APPEND spdx_text "Relationship: SPDXRef-cortana STATIC_LINK SPDXRef-${name}\n")
  endif()
  set(spdx_text "${spdx_text}" PARENT_SCOPE)
endfunction()

cortana_spdx_package(cortana ${PROJECT_VERSION} MIT "2026 the cortana plugin maintainers")
if(LIBESEDB_STATIC AND EXISTS ${spdx_parts_file})
  file(STRINGS ${spdx_parts_file} lines)
  foreach(line IN LISTS lines)
    string(REPLACE " " ";" words ${line})
    list(GET words 0 name)
    list(GET words 1 version)
    cortana_spdx_package(${name} ${version} LGPL-3.0-or-later "2008-2024, Joachim Metz")
  endforeach()
elseif(LIBESEDB_STATIC)
  cortana_spdx_package(libesedb NOASSERTION LGPL-3.0-or-later "2008-2024, Joachim Metz")
endif()

# Each list that differs needs a name of its own: that of Debian 13, say, where nothing is linked in statically.
string(TIMESTAMP spdx_created "%Y-%m-%dT%H:%M:%SZ" UTC)
string(UUID spdx_uuid NAMESPACE 00000000-0000-0000-0000-000000000000 NAME "${spdx_created}${spdx_text}" TYPE SHA1)
file(CONFIGURE OUTPUT ${spdx_file} @ONLY CONTENT "SPDXVersion: SPDX-2.3
DataLicense: CC0-1.0
SPDXID: SPDXRef-DOCUMENT
DocumentName: cortana-${PROJECT_VERSION}
DocumentNamespace: urn:uuid:${spdx_uuid}
Creator: Tool: cortana-build-${PROJECT_VERSION}
Created: ${spdx_created}
Relationship: SPDXRef-DOCUMENT DESCRIBES SPDXRef-cortana
${spdx_text}")
install(FILES ${spdx_file} DESTINATION ${CMAKE_INSTALL_DOCDIR})
