# The headers that our layouts are held against announce their own open questions by #warning.
set_source_files_properties(${folder}/layout_test.cpp PROPERTIES COMPILE_OPTIONS "-Wno-cpp")
