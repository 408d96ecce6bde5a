# cmake --install: headers under include/orvik/, the library, a CMake package and a pkg-config file.
