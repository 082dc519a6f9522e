# orva_pictures(TARGET): renders each vector source of resources/ to a PNG and embeds them all in TARGET, by id, so
# that the module is one file to install. A source is named by its id, then whatever helps a reader: 141_record.svg.
# The same sources, renderer and font give the same bytes.
# With them goes the font of the window's texts, so that they look and fit alike on every machine.
find_program(RSVG_CONVERT rsvg-convert REQUIRED)
find_program(FC_MATCH fc-match)
if(FC_MATCH)
  execute_process(COMMAND ${FC_MATCH} -f "%{family}" "Roboto Condensed" OUTPUT_VARIABLE picture_font)
  if(NOT picture_font MATCHES "Roboto Condensed")
    message(WARNING "The captions want the font Roboto Condensed (fonts-roboto-unhinted); ${picture_font} stands in.")
  endif()
endif()

foreach(style Regular Bold)
  find_file(ORVA_FONT_${style} Roboto-${style}.ttf REQUIRED PATHS /usr/share/fonts /usr/local/share/fonts
    PATH_SUFFIXES truetype/roboto/unhinted/RobotoTTF truetype/roboto/unhinted truetype/roboto roboto google-roboto
    DOC "The font of the window's texts (fonts-roboto-unhinted)")
endforeach()

function(orva_pictures target)
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/resources/*.svg)
  set(folder ${PROJECT_BINARY_DIR}/pictures)
  file(MAKE_DIRECTORY ${folder})
  set(bytes "")
  set(names "")
  set(rows "")
  set(rendered "")
  foreach(source ${sources})
    get_filename_component(name ${source} NAME_WE)
    string(REGEX MATCH "^[0-9]+" id ${name})
    set(png ${folder}/${id}.png)
    add_custom_command(OUTPUT ${png} DEPENDS ${source} VERBATIM
      COMMAND ${RSVG_CONVERT} --format=png --output=${png} ${source}
      COMMENT "Rendering ${name}.svg")
    list(APPEND rendered ${png})
    string(APPEND bytes "    \"picture_${id}: .incbin \\\"${id}.png\\\"\\n\"\n    \"picture_${id}_end:\\n\"\n")
    string(APPEND names "extern const unsigned char picture_${id}[], picture_${id}_end[];\n")
    string(APPEND rows "    {${id}, picture_${id}, picture_${id}_end},\n")
  endforeach()
  set(font_rows "")
  foreach(style Regular Bold)
    configure_file(${ORVA_FONT_${style}} ${folder}/${style}.ttf COPYONLY)
    list(APPEND rendered ${folder}/${style}.ttf)
    string(APPEND bytes "    \"font_${style}: .incbin \\\"${style}.ttf\\\"\\n\"\n    \"font_${style}_end:\\n\"\n")
    string(APPEND names "extern const unsigned char font_${style}[], font_${style}_end[];\n")
    string(APPEND font_rows "    {font_${style}, font_${style}_end},\n")
  endforeach()
  configure_file(${PROJECT_SOURCE_DIR}/cmake/pictures.cpp.in ${folder}/pictures.cpp @ONLY)
  target_sources(${target} PRIVATE ${folder}/pictures.cpp)
  set_source_files_properties(${folder}/pictures.cpp PROPERTIES
    OBJECT_DEPENDS "${rendered}" COMPILE_OPTIONS "-Wa,-I${folder}")
endfunction()
