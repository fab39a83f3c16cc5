# What `cpack` makes Debian packages of: one for each component. To be configured with the prefix /usr, as the
# preset `package` is.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tessit)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # it would stand in front of each package's own
set(CPACK_PACKAGE_CONTACT "The developers of tessit <developers@tessit.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_COMPONENTS_ALL runtime dev tool)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)

# Dependencies on other packages are looked up in what was linked; those between ours are said below.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src)
set(library_package libtessit${PROJECT_VERSION_MAJOR})

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${library_package})
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "Compact XML library
Reads, writes and compares XML documents with namespaces: a pull reader, a
SAX parser, a writer, and the values of XML Schema's types.")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libtessit-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "${library_package} (= ${PROJECT_VERSION})")
if(TESSIT_ICU)
    string(APPEND CPACK_DEBIAN_DEV_PACKAGE_DEPENDS ", libicu-dev")
endif()
set(CPACK_COMPONENT_DEV_DESCRIPTION "Compact XML library, development files
Headers, and the files by which CMake and pkg-config find the library.")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME tessit)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION text)
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS "${library_package} (>= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_TOOL_DESCRIPTION "Command line tool for XML documents
Prints the nodes of documents, one to a line, and tells whether two documents
say the same thing.")

include(CPack)
