# orvik_measure_memory(target): lets a test program count the memory its code holds (memory_meter.h).
function(orvik_measure_memory target)
  target_sources(${target} PRIVATE ${CMAKE_SOURCE_DIR}/tests/support/memory/memory_meter.cpp)
  target_include_directories(${target} PRIVATE ${CMAKE_SOURCE_DIR})
  target_link_options(${target} PRIVATE LINKER:--wrap=malloc,--wrap=calloc,--wrap=realloc,--wrap=free)
endfunction()
