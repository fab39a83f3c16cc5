# The warnings that our own targets are built with: target_link_libraries(x PRIVATE tessit_warnings).
# Whether they are errors is the presets' business.
add_library(tessit_warnings INTERFACE)
target_compile_options(tessit_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wnon-virtual-dtor -Wold-style-cast
    -Woverloaded-virtual -Wcast-align -Wundef)
