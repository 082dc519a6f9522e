# Run-time choice of the instruction set, as in the engine.
target_link_libraries(orva_listening PRIVATE highway)
if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug" AND NOT ORVA_SANITIZE)
  set_source_files_properties(${PROJECT_SOURCE_DIR}/listening/net_kernels_vector.cpp
    ${PROJECT_SOURCE_DIR}/listening/features.cpp PROPERTIES COMPILE_OPTIONS "-O3")
endif()
