# The target `reference`: pages of the comments in the public headers, in the build's folder reference/html. A
# warning of Doxygen's is an error.
configure_file(${CMAKE_CURRENT_LIST_DIR}/Doxyfile.in ${PROJECT_BINARY_DIR}/Doxyfile @ONLY)
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/reference)
add_custom_target(reference COMMAND doxygen ${PROJECT_BINARY_DIR}/Doxyfile COMMENT "Making the reference" VERBATIM)
