# The plug-in object is met as a host meets it, through the entry point.
target_link_libraries(test_plugin PRIVATE orva_module)
