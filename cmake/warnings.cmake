# The warnings that our own targets are built with: target_link_libraries(x PRIVATE tessit_warnings).
# Whether they are errors is the presets' business.
add_library(tessit_warnings INTERFACE)
target_compile_options(tessit_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wnon-virtual-dtor -Wold-style-cast
    -Woverloaded-virtual -Wcast-align -Wundef)
# When optimising, GCC 12 takes `"x" + std::string()` for a copy within one text.
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(tessit_warnings INTERFACE -Wno-restrict)
endif()
