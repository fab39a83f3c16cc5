# The target `reference`: pages of the comments in the public headers, in the build's folder reference/html, and
# of the examples, to which the pages of the classes in them lead. A warning of Doxygen's is an error.
file(GLOB examples RELATIVE ${PROJECT_SOURCE_DIR}/examples CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/examples/*.cpp)
list(TRANSFORM examples REPLACE "(.+)" "/** @example \\1 */")
list(JOIN examples "\n" examples)
configure_file(${CMAKE_CURRENT_LIST_DIR}/reference.dox.in ${PROJECT_BINARY_DIR}/reference.dox @ONLY)
configure_file(${CMAKE_CURRENT_LIST_DIR}/Doxyfile.in ${PROJECT_BINARY_DIR}/Doxyfile @ONLY)
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/reference)
add_custom_target(reference COMMAND doxygen ${PROJECT_BINARY_DIR}/Doxyfile COMMENT "Making the reference" VERBATIM)
