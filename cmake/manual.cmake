# The manual as one page that needs nothing else, and the man page of orva-host, both made by pandoc:
#   build/PRESET/manual/manual.html, orva-host.1, orva-host.1.gz
# The target `manual` is not part of a usual build, so that building needs no pandoc. The same sources and the same
# pandoc give the same bytes.
find_program(PANDOC pandoc)

function(orva_manual)
  if(NOT PANDOC)
    add_custom_target(manual
      COMMAND ${CMAKE_COMMAND} -E echo
        "The manual is made by pandoc, which is missing: scripts/setup package, then cmake --preset NAME once more"
      COMMAND ${CMAKE_COMMAND} -E false VERBATIM)
    return()
  endif()
  execute_process(COMMAND ${PANDOC} --version OUTPUT_VARIABLE version)
  string(REGEX MATCH "[0-9]+\\.[0-9.]+" version "${version}")
  if(version VERSION_LESS 2.19)
    set(embed --self-contained)
  else()
    set(embed --embed-resources --standalone)
  endif()

  set(sources ${PROJECT_SOURCE_DIR}/docs/manual)
  set(made ${PROJECT_BINARY_DIR}/manual)
  set(page ${sources}/manual.md ${sources}/manual.css ${sources}/page.html)
  file(GLOB pictures CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/*.png ${PROJECT_SOURCE_DIR}/docs/window/*.png)
  file(MAKE_DIRECTORY ${made})

  add_custom_command(OUTPUT ${made}/manual.html DEPENDS ${page} ${pictures} VERBATIM
    COMMAND ${PANDOC} manual.md --output=${made}/manual.html --from=markdown-smart --to=html5 ${embed}
      --fail-if-warnings --template=page.html --css=manual.css --toc --toc-depth=2 --metadata=subtitle:Version\ ${PROJECT_VERSION}
    WORKING_DIRECTORY ${sources} COMMENT "Making the manual")
  add_custom_command(OUTPUT ${made}/orva-host.1 DEPENDS ${sources}/orva-host.1.md VERBATIM
    COMMAND ${PANDOC} orva-host.1.md --output=${made}/orva-host.1 --from=markdown-smart --to=man --standalone
      --fail-if-warnings --variable=footer:ORVA\ ${PROJECT_VERSION}
    WORKING_DIRECTORY ${sources} COMMENT "Making the man page of orva-host")
  # Without name and time inside, so that it is the same tomorrow.
  add_custom_command(OUTPUT ${made}/orva-host.1.gz DEPENDS ${made}/orva-host.1 VERBATIM
    COMMAND gzip -9nkf ${made}/orva-host.1)
  add_custom_target(manual DEPENDS ${made}/manual.html ${made}/orva-host.1.gz)
endfunction()
