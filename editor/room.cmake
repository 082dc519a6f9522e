# The toolkit that the editor is built on, and the pictures that it shows.
include(${PROJECT_SOURCE_DIR}/cmake/vstgui.cmake)
include(${PROJECT_SOURCE_DIR}/cmake/pictures.cmake)
target_link_libraries(orva_editor PUBLIC vstgui)
orva_pictures(orva_editor)
