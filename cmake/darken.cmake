# cmake -DPALETTE=editor/palette.h -DSOURCE=IN.svg -DOUT=OUT.svg -P darken.cmake: the picture in the dark colours that
# the palette gives for its light ones. Of two rows of the same light colour the first counts.
file(STRINGS ${PALETTE} rows REGEX "Shade [A-Za-z]+ *= {0x")
file(READ ${SOURCE} picture)
foreach(row ${rows})
  string(REGEX MATCH "{0x([0-9a-f]+), 0x([0-9a-f]+)}" shade "${row}")
  # A colour that was put takes no part in what follows, so it has no # until the end.
  string(REPLACE "\"#${CMAKE_MATCH_1}\"" "\"@${CMAKE_MATCH_2}\"" picture "${picture}")
endforeach()
string(REGEX MATCH "\"#[0-9a-fA-F]*\"" left "${picture}")
if(left)
  message(FATAL_ERROR "${SOURCE}: ${PALETTE} has no row for ${left}")
endif()
string(REPLACE "\"@" "\"#" picture "${picture}")
file(WRITE ${OUT} "${picture}")
