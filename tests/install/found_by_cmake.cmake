# SPDX-License-Identifier: MIT
# CMakeLists.txt of a host that finds the plugin's contract with find_package.
cmake_minimum_required(VERSION 3.16)
project(small_host LANGUAGES CXX)
set(CMAKE_CXX_STANDARD 17)
find_package(cortana 1.0 REQUIRED)
add_executable(small_host small_host.cpp)
target_link_libraries(small_host PRIVATE cortana::contract dl)
file(WRITE ${CMAKE_BINARY_DIR}/plugin "${cortana_PLUGIN}")
