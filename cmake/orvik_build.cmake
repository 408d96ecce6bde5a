# How a floor, the shared library and a test program are built.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

find_program(ORVIK_CCACHE ccache)
if(ORVIK_CCACHE)
  # Paths count from the root, so that another clone of the same sources finds what this one compiled.
  set(launcher ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${ORVIK_CCACHE})
  set(CMAKE_C_COMPILER_LAUNCHER ${launcher})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${launcher})
endif()

if(ORVIK_SANITIZE)
  add_compile_options(-fsanitize=${ORVIK_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ORVIK_SANITIZE})
endif()
if(WIN32)
  # All three runtimes inside, so that a DLL and a program need nothing but the system's own libraries.
  add_link_options(-static)
  add_compile_definitions(NOMINMAX _WIN32_WINNT=0x0601 WINVER=0x0601 __USE_MINGW_ANSI_STDIO=1)
endif()

# Warnings for our own code; libraries such as GoogleTest keep theirs.
add_library(orvik_warnings INTERFACE)
target_compile_options(orvik_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
# GCC 12 sees overlaps that are not there in its own std::string once it optimises.
target_compile_options(orvik_warnings INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
if(ORVIK_WERROR)
  target_compile_options(orvik_warnings INTERFACE -Werror)
endif()

# What the platform floor needs of the system, passed on to whatever links it.
add_library(orvik_system INTERFACE)
if(WIN32)
  target_link_libraries(orvik_system INTERFACE setupapi version)
else()
  find_package(Threads REQUIRED)
  find_package(ICU REQUIRED COMPONENTS i18n uc data)
  target_link_libraries(orvik_system INTERFACE Threads::Threads ICU::i18n ICU::uc ICU::data ${CMAKE_DL_LIBS})
endif()

# Every floor's objects, for programs that test internals: no export, no import.
add_library(orvik_internals INTERFACE)
target_include_directories(orvik_internals INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_definitions(orvik_internals INTERFACE ORVIK_STATIC)
target_link_libraries(orvik_internals INTERFACE orvik_system)
set_property(GLOBAL PROPERTY ORVIK_FLOORS "")

# orvik_floor(name): one object library of a folder's sources. platform/ takes the twin of the home it is built for.
# A folder that needs more than its sources says so in <folder>/floor.cmake.
function(orvik_floor name)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${name}/*.cpp)
  if(name STREQUAL "platform")
    if(WIN32)
      file(GLOB twin CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/platform/windows/*.cpp)
    else()
      file(GLOB twin CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/platform/posix/*.cpp)
    endif()
    list(APPEND sources ${twin})
  endif()
  set(extra ${CMAKE_SOURCE_DIR}/${name}/floor.cmake)
  if(NOT sources AND NOT EXISTS ${extra})
    return()
  endif()
  set(target orvik_${name})
  add_library(${target} OBJECT ${sources})
  target_include_directories(${target} PRIVATE ${CMAKE_SOURCE_DIR})
  target_compile_definitions(${target} PRIVATE ORVIK_BUILD)
  target_link_libraries(${target} PRIVATE orvik_warnings orvik_system)
  if(EXISTS ${extra})
    include(${extra})
  endif()
  target_sources(orvik_internals INTERFACE $<TARGET_OBJECTS:${target}>)
  set_property(GLOBAL APPEND PROPERTY ORVIK_FLOORS ${target})
endfunction()

function(orvik_shared_library)
  get_property(floors GLOBAL PROPERTY ORVIK_FLOORS)
  set(objects)
  foreach(floor IN LISTS floors)
    list(APPEND objects $<TARGET_OBJECTS:${floor}>)
  endforeach()
  add_library(OrvikShared SHARED ${objects})
  add_library(OrvikShared::OrvikShared ALIAS OrvikShared)
  target_link_libraries(OrvikShared PRIVATE orvik_system)
  target_compile_features(OrvikShared PUBLIC cxx_std_20)
  target_include_directories(OrvikShared INTERFACE
    $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/orvik>)
  set_target_properties(OrvikShared PROPERTIES LINKER_LANGUAGE CXX)
  if(WIN32)
    set_target_properties(OrvikShared PROPERTIES PREFIX "")  # OrvikShared.dll: stock icons are found by this name
  else()
    set_target_properties(OrvikShared PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  endif()
endfunction()

# orvik_test(name SOURCES ... [LIBRARIES ...] [LABELS ...] [ENVIRONMENT ...]): one GoogleTest program over the internals.
# One CTest entry a program: under Wine, listing the cases would cost one start for each.
function(orvik_test name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBRARIES;LABELS;ENVIRONMENT" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE orvik_internals orvik_warnings GTest::gtest GTest::gmock ${arg_LIBRARIES})
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES LABELS "${arg_LABELS}" TIMEOUT 300 ENVIRONMENT "${arg_ENVIRONMENT}")
endfunction()
