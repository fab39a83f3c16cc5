# tessit_room(SOURCES ... APART ... HEADERS ...) adds a room's files to the library. Sources are named from the room's
# folder, headers from include/. Where CMAKE_UNITY_BUILD is on, a room's sources are compiled as one, but for those
# apart: these have names of their own that others in the room have, too, or a test takes their objects, or a function
# in them is flattened, and would take the whole room in.
function(tessit_room)
    cmake_parse_arguments(PARSE_ARGV 0 ROOM "" "" "SOURCES;APART;HEADERS")
    list(TRANSFORM ROOM_SOURCES PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
    list(TRANSFORM ROOM_APART PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
    list(TRANSFORM ROOM_HEADERS PREPEND ${PROJECT_SOURCE_DIR}/include/)
    cmake_path(GET CMAKE_CURRENT_SOURCE_DIR FILENAME room)
    set_source_files_properties(${ROOM_SOURCES} TARGET_DIRECTORY tessit PROPERTIES UNITY_GROUP ${room})
    target_sources(tessit PRIVATE ${ROOM_SOURCES} ${ROOM_APART})
    target_sources(tessit PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR}/include FILES ${ROOM_HEADERS})
endfunction()
