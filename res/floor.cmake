# The module's resources: compiled by the resource compiler on Windows, embedded as they stand elsewhere.
file(GLOB ORVIK_RESOURCE_FILES CONFIGURE_DEPENDS
  ${CMAKE_SOURCE_DIR}/res/*.def ${CMAKE_SOURCE_DIR}/res/cursors/*.cur ${CMAKE_SOURCE_DIR}/res/icons/*.ico)
if(WIN32)
  enable_language(RC)
  set(ORVIK_RESOURCE_SOURCE ${CMAKE_SOURCE_DIR}/res/OrvikShared.rc)
  set_source_files_properties(${ORVIK_RESOURCE_SOURCE} PROPERTIES INCLUDE_DIRECTORIES "${CMAKE_SOURCE_DIR}/res;${CMAKE_SOURCE_DIR}")
  list(APPEND ORVIK_RESOURCE_FILES ${CMAKE_SOURCE_DIR}/res/version_record.rc ${CMAKE_SOURCE_DIR}/platform/version_record.h
       ${CMAKE_SOURCE_DIR}/frame/version.h)
else()
  set_source_files_properties(${CMAKE_SOURCE_DIR}/res/version_record.rc PROPERTIES LANGUAGE CXX)
  target_sources(orvik_res PRIVATE ${CMAKE_SOURCE_DIR}/res/version_record.rc)
  set(ORVIK_RESOURCE_SOURCE ${CMAKE_SOURCE_DIR}/res/posix/embedded.cpp)
  set_source_files_properties(${ORVIK_RESOURCE_SOURCE} PROPERTIES COMPILE_OPTIONS -Wa,-I${CMAKE_SOURCE_DIR}/res)  # for .incbin
endif()
set_source_files_properties(${ORVIK_RESOURCE_SOURCE} PROPERTIES OBJECT_DEPENDS "${ORVIK_RESOURCE_FILES}")
target_sources(orvik_res PRIVATE ${ORVIK_RESOURCE_SOURCE})
# The embedded files are named to the assembler, which link-time optimisation would run from elsewhere.
set_target_properties(orvik_res PROPERTIES INTERPROCEDURAL_OPTIMIZATION OFF)
