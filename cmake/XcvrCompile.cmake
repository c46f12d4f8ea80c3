# How this project's own code is compiled. Every target of the project links xcvr-compile privately,
# so nothing of it reaches a program that uses the library.
add_library( xcvr-compile INTERFACE )
target_compile_features( xcvr-compile INTERFACE cxx_std_20 )
target_compile_options( xcvr-compile INTERFACE
   -Wall -Wextra -Wpedantic -Wshadow -Wconversion
   # A decoded value must have the same bits whatever the processor: no fused multiply-add.
   -ffp-contract=off
   # Nobody replaces an exported function of the library, so the compiler may inline it.
   -fno-semantic-interposition
   # No path of the building machine in messages of assertions.
   -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=
   # An error in a model macro points at the declared list, not at thousands of lines of expansion.
   $<$<CXX_COMPILER_ID:GNU>:-ftrack-macro-expansion=0>
   # GCC 12 sees impossible overlaps inside "text" + std::string (GCC bug 105651).
   $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
   # A keyed and an unkeyed handler share a name on purpose; an observer may override only one.
   $<$<CXX_COMPILER_ID:Clang>:-Wno-overloaded-virtual>
   $<$<BOOL:${XCVR_WARNINGS_AS_ERRORS}>:-Werror> )
set( CMAKE_CXX_EXTENSIONS OFF )
