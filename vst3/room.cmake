# The published interfaces, untouched: no warning and no check of ours is for them.
add_library(orva_vst3_interfaces STATIC
  ${PROJECT_SOURCE_DIR}/vst3/interfaces/pluginterfaces/base/coreiids.cpp
  ${PROJECT_SOURCE_DIR}/vst3/interfaces/pluginterfaces/base/funknown.cpp)
target_compile_features(orva_vst3_interfaces PUBLIC cxx_std_20)
target_compile_options(orva_vst3_interfaces PRIVATE -w -fPIC -fvisibility=hidden -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
target_compile_definitions(orva_vst3_interfaces PUBLIC $<IF:$<CONFIG:Debug>,DEVELOPMENT=1,RELEASE=1>)
target_include_directories(orva_vst3_interfaces SYSTEM PUBLIC ${PROJECT_SOURCE_DIR}/vst3/interfaces)
target_link_libraries(orva_vst3 PUBLIC orva_vst3_interfaces)
target_compile_definitions(orva_vst3 PRIVATE ORVA_VERSION="${PROJECT_VERSION}")
