target_link_libraries(test_windows PRIVATE orva_desktop orva_notes orva_vst3)
add_dependencies(test_windows orva_vst3_file)
target_compile_definitions(test_windows PRIVATE ORVA_VST3="$<TARGET_FILE:orva_vst3_file>")
