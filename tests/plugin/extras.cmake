# The plug-in object is opened as a host opens it, through the entry point.
target_link_libraries(test_plugin PRIVATE orva_module)
