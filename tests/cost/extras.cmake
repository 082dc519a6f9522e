# The programs whose instructions are counted.
foreach(program block_cost block_costs)
  add_executable(${program} ${CMAKE_CURRENT_LIST_DIR}/program/${program}.cpp)
  target_link_libraries(${program} PRIVATE orva_module Threads::Threads)
  add_dependencies(test_cost ${program})
endforeach()
target_compile_definitions(test_cost PRIVATE ORVA_BLOCK_COST="$<TARGET_FILE:block_cost>" ORVA_BUDGET=6805000
  ORVA_BLOCK_COSTS="$<TARGET_FILE:block_costs>")
