# tessit_room(SOURCES ... HEADERS ...) adds a room's files to the library. Sources are named from the room's
# folder, headers from include/.
function(tessit_room)
    cmake_parse_arguments(PARSE_ARGV 0 ROOM "" "" "SOURCES;HEADERS")
    list(TRANSFORM ROOM_SOURCES PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
    list(TRANSFORM ROOM_HEADERS PREPEND ${PROJECT_SOURCE_DIR}/include/)
    target_sources(tessit PRIVATE ${ROOM_SOURCES})
    target_sources(tessit PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR}/include FILES ${ROOM_HEADERS})
endfunction()
