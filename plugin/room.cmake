# The block path's loops over samples are worth the compiler's full effort, as the detector's are.
if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug" AND NOT ORVA_SANITIZE)
  set_source_files_properties(${PROJECT_SOURCE_DIR}/plugin/sample_conversion.cpp PROPERTIES COMPILE_OPTIONS "-O3")
endif()
