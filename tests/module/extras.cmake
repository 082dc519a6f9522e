# The module as a host loads it: from its file.
target_compile_definitions(test_module PRIVATE ORVA_MODULE_FILE="$<TARGET_FILE:orva_vst>")
target_link_libraries(test_module PRIVATE orva_vst2 ${CMAKE_DL_LIBS})
add_dependencies(test_module orva_vst)
