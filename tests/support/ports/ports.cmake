# orvik_port_test(name SOURCES ... [LIBRARIES ...] [LABELS ...] [ENVIRONMENT ...]): an orvik_test with simulated serial ports
# (tests/support/ports/serial_peer.h). On Windows the far end and the preload library are native programs, made by the
# machine's own compiler, and the test starts through run-with-ports.
include_guard(GLOBAL)
set(ORVIK_PORTS_DIR ${CMAKE_CURRENT_LIST_DIR})

if(WIN32)
  find_program(ORVIK_NATIVE_CXX NAMES c++ g++ clang++ REQUIRED)
  set(native ${ORVIK_NATIVE_CXX} -std=c++20 -O1 -Wall -Wextra)
  set(ORVIK_PTY_PEER ${CMAKE_BINARY_DIR}/native/orvik_pty_peer)
  set(ORVIK_PTY_SIM ${CMAKE_BINARY_DIR}/native/liborvik_ptysim.so)
  file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/native)
  add_custom_command(OUTPUT ${ORVIK_PTY_PEER}
    COMMAND ${native} -pthread -o ${ORVIK_PTY_PEER} ${ORVIK_PORTS_DIR}/pty_peer.cpp ${ORVIK_PORTS_DIR}/pty_peer_main.cpp
    DEPENDS ${ORVIK_PORTS_DIR}/pty_peer.cpp ${ORVIK_PORTS_DIR}/pty_peer_main.cpp ${ORVIK_PORTS_DIR}/pty_peer.h
            ${ORVIK_PORTS_DIR}/pty_sim.h
    COMMENT "Building the far end of simulated ports" VERBATIM)
  add_custom_command(OUTPUT ${ORVIK_PTY_SIM}
    COMMAND ${native} -shared -fPIC -fvisibility=hidden -static-libstdc++ -static-libgcc -o ${ORVIK_PTY_SIM}
            ${ORVIK_PORTS_DIR}/pty_sim.cpp -ldl
    DEPENDS ${ORVIK_PORTS_DIR}/pty_sim.cpp ${ORVIK_PORTS_DIR}/pty_sim.h
    COMMENT "Building the line simulation for pseudo terminals" VERBATIM)
  add_custom_target(orvik_port_helpers DEPENDS ${ORVIK_PTY_PEER} ${ORVIK_PTY_SIM})
endif()

function(orvik_port_test name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBRARIES;LABELS;ENVIRONMENT" ${ARGN})
  set(sources ${arg_SOURCES} ${ORVIK_PORTS_DIR}/serial_peer.cpp)
  if(WIN32)
    list(APPEND sources ${ORVIK_PORTS_DIR}/peer_link_tcp.cpp)
    list(APPEND arg_LIBRARIES ws2_32)
  else()
    list(APPEND sources ${ORVIK_PORTS_DIR}/peer_link_native.cpp ${ORVIK_PORTS_DIR}/pty_peer.cpp ${ORVIK_PORTS_DIR}/pty_sim.cpp)
  endif()
  add_executable(${name} ${sources})
  if(WIN32)
    add_dependencies(${name} orvik_port_helpers)
    set_target_properties(${name} PROPERTIES CROSSCOMPILING_EMULATOR
      "${ORVIK_PORTS_DIR}/run-with-ports;${ORVIK_PTY_PEER};${ORVIK_PTY_SIM};${CMAKE_CROSSCOMPILING_EMULATOR}")
  endif()
  target_link_libraries(${name} PRIVATE orvik_internals orvik_warnings GTest::gtest GTest::gmock ${arg_LIBRARIES})
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES LABELS "${arg_LABELS}" TIMEOUT 300 ENVIRONMENT "${arg_ENVIRONMENT}")
endfunction()
