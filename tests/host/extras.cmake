# The real program and the real module, and the recordings that the project ships.
add_dependencies(test_host orva-host orva_vst orva_vst_presets)
target_link_libraries(test_host PRIVATE nlohmann_json::nlohmann_json orva_notes orva_midifile)
target_compile_definitions(test_host PRIVATE
  ORVA_HOST_PROGRAM="$<TARGET_FILE:orva-host>"
  ORVA_MODULE="$<TARGET_FILE:orva_vst>"
  ORVA_GOLDEN="${CMAKE_CURRENT_SOURCE_DIR}/host/golden"
  ORVA_PRESETS="${PROJECT_BINARY_DIR}/presets"
  ORVA_RECORDINGS="${PROJECT_SOURCE_DIR}/recordings" ORVA_DOCUMENTS="${PROJECT_SOURCE_DIR}/docs")
# A JACK server of its own receives notes.
pkg_check_modules(JACK_TEST REQUIRED IMPORTED_TARGET jack cairo)
target_link_libraries(test_host PRIVATE PkgConfig::JACK_TEST)
