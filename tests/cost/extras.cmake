# The program whose instructions are counted.
add_executable(block_costs ${CMAKE_CURRENT_LIST_DIR}/program/block_costs.cpp)
target_link_libraries(block_costs PRIVATE orva_module orva_test_support)
add_dependencies(test_cost block_costs)
target_compile_definitions(test_cost PRIVATE ORVA_BLOCK_COSTS="$<TARGET_FILE:block_costs>")
