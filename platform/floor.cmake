# Files that stay alone in a joined build: the system's two headers of line settings exclude each other, and that of its sockets
# has to come before any other of Windows.
set_source_files_properties(${CMAKE_SOURCE_DIR}/platform/posix/serial/serial_speed.cpp ${CMAKE_SOURCE_DIR}/platform/socket_connect.cpp
                            PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
