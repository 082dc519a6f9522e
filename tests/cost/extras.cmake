# The program whose instructions are counted.
add_executable(block_cost ${CMAKE_CURRENT_LIST_DIR}/program/block_cost.cpp)
target_link_libraries(block_cost PRIVATE orva_module Threads::Threads)
add_dependencies(test_cost block_cost)
target_compile_definitions(test_cost PRIVATE ORVA_BLOCK_COST="$<TARGET_FILE:block_cost>" ORVA_BUDGET=6805000)
