# cmake --install: headers under include/orvik/, the documents, the library, a CMake package, a pkg-config file, and the host with its plug-ins.
include(CMakePackageConfigHelpers)

if(WIN32)
  set(ORVIK_OTHER_HOME "/platform/posix")
else()
  set(ORVIK_OTHER_HOME "/platform/windows")
endif()
foreach(folder IN ITEMS platform afx toolkit frame time xml commands propdb record comm chart ui)
  # A header whose opening comment says "Internal." stays at home, as those named so do.
  set(ORVIK_INTERNAL "_internal\\.h$|/platform/screen_gtk3")  # the latter's headers are between its own files
  file(GLOB headers ${CMAKE_SOURCE_DIR}/${folder}/*.h)
  foreach(header IN LISTS headers)
    file(STRINGS ${header} internal REGEX "^//.*Internal[.:;]" LIMIT_COUNT 1)
    if(internal)
      cmake_path(GET header FILENAME name)
      string(REPLACE "." "\\." name ${name})
      string(APPEND ORVIK_INTERNAL "|/${folder}/${name}$")
    endif()
  endforeach()
  install(DIRECTORY ${CMAKE_SOURCE_DIR}/${folder} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orvik
          FILES_MATCHING PATTERN "*.h" REGEX "${ORVIK_INTERNAL}|${ORVIK_OTHER_HOME}" EXCLUDE)
endforeach()
# The numbers of the texts and cursors that a host may load, and what the host offers its plug-ins.
install(FILES ${CMAKE_SOURCE_DIR}/res/ids.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orvik/res)
install(FILES ${CMAKE_SOURCE_DIR}/host/logger_family.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orvik/host)

install(TARGETS OrvikShared EXPORT OrvikShared
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(EXPORT OrvikShared FILE OrvikSharedTargets.cmake NAMESPACE OrvikShared:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/OrvikShared)
file(WRITE ${CMAKE_BINARY_DIR}/OrvikSharedConfig.cmake "include(\${CMAKE_CURRENT_LIST_DIR}/OrvikSharedTargets.cmake)\n")
write_basic_package_version_file(${CMAKE_BINARY_DIR}/OrvikSharedConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/OrvikSharedConfig.cmake ${CMAKE_BINARY_DIR}/OrvikSharedConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/OrvikShared)

install(FILES ${CMAKE_SOURCE_DIR}/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY ${CMAKE_SOURCE_DIR}/docs DESTINATION ${CMAKE_INSTALL_DOCDIR})
if(ORVIK_HOST AND NOT WIN32)
  # To be looked at and copied: what the service manager runs is its administrator's choice, whatever is installed where.
  install(FILES ${CMAKE_SOURCE_DIR}/host/posix/orvik-record@.service DESTINATION ${CMAKE_INSTALL_DOCDIR})
endif()

# Placed by its own folder, so that a moved tree still works, however deep the libraries lie in it.
set(folder ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${folder} OUTPUT_VARIABLE prefix)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_INCLUDEDIR BASE_DIRECTORY ${folder} OUTPUT_VARIABLE includes)
file(WRITE ${CMAKE_BINARY_DIR}/orvikshared.pc
"prefix=\${pcfiledir}/${prefix}
libdir=\${pcfiledir}/..
includedir=\${pcfiledir}/${includes}/orvik

Name: OrvikShared
Description: ${PROJECT_DESCRIPTION}
Version: ${PROJECT_VERSION}
Cflags: -I\${includedir}
Libs: -L\${libdir} -lOrvikShared
")
install(FILES ${CMAKE_BINARY_DIR}/orvikshared.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(TARGET orvikhost AND TARGET orvik_modbus AND TARGET orvik_text)
  install(TARGETS orvikhost RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  if(WIN32)
    install(TARGETS orvik_modbus orvik_text LIBRARY DESTINATION ${CMAKE_INSTALL_BINDIR}/plugins)
    # In a folder of its own (host/CMakeLists.txt), with a library beside itself.
    install(TARGETS orvikhost_gui RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}/gui)
    install(FILES $<TARGET_FILE:OrvikShared> DESTINATION ${CMAKE_INSTALL_BINDIR}/gui)
  else()
    get_property(sinks GLOBAL PROPERTY ORVIK_SINKS)
    install(TARGETS orvik_modbus orvik_text ${sinks} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/orvik/plugins)
  endif()
endif()
if(TARGET orvik_screen_gtk3)
  install(TARGETS orvik_screen_gtk3 LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/orvik)
  if(TARGET orvikhost_gui)
    install(TARGETS orvikhost_gui RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  endif()
endif()
if(ORVIK_HOST AND NOT WIN32)
  add_subdirectory(packaging/linux)
endif()
