# The detector's inner loops are worth the compiler's full effort, in every build that is not for debugging.
if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug" AND NOT ORVA_SANITIZE)
  set_source_files_properties(${PROJECT_SOURCE_DIR}/engine/kernels_plain.cpp PROPERTIES COMPILE_OPTIONS "-O3")
endif()
