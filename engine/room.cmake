# Run-time choice of the instruction set.
include(${PROJECT_SOURCE_DIR}/cmake/highway.cmake)
target_link_libraries(orva_engine PRIVATE highway)

# The inner loops are worth the compiler's full effort, in every build that is not for debugging.
if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug" AND NOT ORVA_SANITIZE)
  set_source_files_properties(
    ${PROJECT_SOURCE_DIR}/engine/kernels_vector.cpp ${PROJECT_SOURCE_DIR}/engine/kernels_fit.cpp
    ${PROJECT_SOURCE_DIR}/engine/note_decision.cpp
    PROPERTIES COMPILE_OPTIONS "-O3")
endif()
