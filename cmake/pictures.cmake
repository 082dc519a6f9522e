# orva_pictures(TARGET): renders each vector source of resources/ to a PNG at one, two and three times its size, in its
# own light colours and in dark ones, and embeds them all in TARGET, by id, scale and variant, so that the module is one
# file to install. A source is named by its id, then whatever helps a reader: 141_record.svg.
# Each PNG has a palette of 256 colours, which halves its bytes and cannot be seen. The same sources, renderer and font
# give the same bytes; one thread, since the order of its sums would show.
# With them goes the font of the window's texts, that of the captions too, so that they look and fit alike on every
# machine.
find_program(RSVG_CONVERT rsvg-convert REQUIRED)
find_program(PNGQUANT pngquant REQUIRED)
find_program(FC_MATCH fc-match)
if(FC_MATCH)
  execute_process(COMMAND ${FC_MATCH} -f "%{family}" "Roboto Condensed" OUTPUT_VARIABLE picture_font)
  if(NOT picture_font MATCHES "Roboto Condensed")
    message(WARNING "The captions want the font Roboto Condensed (fonts-roboto-unhinted); ${picture_font} stands in.")
  endif()
endif()

foreach(style Regular Bold)
  find_file(ORVA_CONDENSED_${style} RobotoCondensed-${style}.ttf REQUIRED PATHS /usr/share/fonts /usr/local/share/fonts
    PATH_SUFFIXES truetype/roboto/unhinted/RobotoTTF truetype/roboto/unhinted truetype/roboto roboto google-roboto
    NO_CMAKE_FIND_ROOT_PATH DOC "The font of the window's texts (fonts-roboto-unhinted)")
endforeach()

function(orva_pictures target)
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/resources/*.svg)
  set(folder ${PROJECT_BINARY_DIR}/pictures)
  set(palette ${PROJECT_SOURCE_DIR}/editor/palette.h)
  file(MAKE_DIRECTORY ${folder})
  set(section_begins ".pushsection .rodata")
  set(section_ends .popsection)
  set(prefix "")
  if(WIN32)
    set(section_begins ".section .rdata,\\\"dr\\\"")
    set(section_ends .text)
    if(CMAKE_SIZEOF_VOID_P EQUAL 4)
      set(prefix _)
    endif()
  endif()
  set(bytes "")
  set(names "")
  set(rows "")
  set(rendered "")
  foreach(source ${sources})
    get_filename_component(name ${source} NAME_WE)
    string(REGEX MATCH "^[0-9]+" id ${name})
    add_custom_command(OUTPUT ${folder}/${id}_dark.svg VERBATIM
      DEPENDS ${source} ${palette} ${PROJECT_SOURCE_DIR}/cmake/darken.cmake
      COMMAND ${CMAKE_COMMAND} -DPALETTE=${palette} -DSOURCE=${source} -DOUT=${folder}/${id}_dark.svg
              -P ${PROJECT_SOURCE_DIR}/cmake/darken.cmake
      COMMENT "Darkening ${name}.svg")
    set(source_of_light ${source})
    set(source_of_dark ${folder}/${id}_dark.svg)
    foreach(variant light dark)
      set(outputs "")
      set(commands "")
      foreach(scale 1 2 3)
        set(picture ${id}_${variant}_${scale})
        set(png ${folder}/${picture}.png)
        list(APPEND outputs ${png})
        list(APPEND commands
          COMMAND ${RSVG_CONVERT} --zoom=${scale} --format=png --output=${png} ${source_of_${variant}}
          COMMAND ${CMAKE_COMMAND} -E env OMP_NUM_THREADS=1
                  ${PNGQUANT} --speed=1 --nofs --strip --force --output=${png} 256 ${png})
        string(APPEND bytes "    \"${prefix}picture_${picture}: .incbin \\\"${picture}.png\\\"\\n\"\n    \"${prefix}picture_${picture}_end:\\n\"\n")
        string(APPEND names "extern const unsigned char picture_${picture}[], picture_${picture}_end[];\n")
        string(APPEND rows "    {${id}, ${scale}, Variant::${variant}, picture_${picture}, picture_${picture}_end},\n")
      endforeach()
      add_custom_command(OUTPUT ${outputs} DEPENDS ${source_of_${variant}} ${commands} VERBATIM
        COMMENT "Rendering ${name}.svg, ${variant}")
      list(APPEND rendered ${outputs})
    endforeach()
  endforeach()
  set(font_rows "")
  foreach(style Regular Bold)
    configure_file(${ORVA_CONDENSED_${style}} ${folder}/${style}.ttf COPYONLY)
    list(APPEND rendered ${folder}/${style}.ttf)
    string(APPEND bytes "    \"${prefix}font_${style}: .incbin \\\"${style}.ttf\\\"\\n\"\n    \"${prefix}font_${style}_end:\\n\"\n")
    string(APPEND names "extern const unsigned char font_${style}[], font_${style}_end[];\n")
    string(APPEND font_rows "    {font_${style}, font_${style}_end},\n")
  endforeach()
  configure_file(${PROJECT_SOURCE_DIR}/cmake/pictures.cpp.in ${folder}/pictures.cpp @ONLY)
  target_sources(${target} PRIVATE ${folder}/pictures.cpp)
  set_source_files_properties(${folder}/pictures.cpp PROPERTIES
    OBJECT_DEPENDS "${rendered}" COMPILE_OPTIONS "-Wa,-I${folder}")
endfunction()
