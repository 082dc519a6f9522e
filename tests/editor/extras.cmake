target_compile_definitions(test_editor PRIVATE ORVA_GOLDEN="${CMAKE_CURRENT_SOURCE_DIR}/editor/golden")
