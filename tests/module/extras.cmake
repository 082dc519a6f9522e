# The module as a host loads it: from its file. Among the hosts is one in plain C.
add_executable(plain_host ${CMAKE_CURRENT_LIST_DIR}/loader/plain_host.c)
target_link_libraries(plain_host PRIVATE ${CMAKE_DL_LIBS} m)
target_compile_definitions(test_module PRIVATE ORVA_MODULE_FILE="$<TARGET_FILE:orva_vst>"
  ORVA_PLAIN_HOST="$<TARGET_FILE:plain_host>")
target_link_libraries(test_module PRIVATE ${CMAKE_DL_LIBS})
add_dependencies(test_module orva_vst plain_host)
