# The window is compared with the pictures that the documents show of it.
target_compile_definitions(test_editor PRIVATE ORVA_PICTURES="${PROJECT_SOURCE_DIR}/docs/window/")
