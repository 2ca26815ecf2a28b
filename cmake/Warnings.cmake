# The warnings that every target of the project is compiled with.
add_library(warnings INTERFACE)
target_compile_options(warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wnon-virtual-dtor -Wold-style-cast
    # g++ alone also warns of constructor parameters named like the member that they initialise
    $<IF:$<CXX_COMPILER_ID:GNU>,-Wshadow=local,-Wshadow>
    $<$<BOOL:${MARVELODE_WARNINGS_AS_ERRORS}>:-Werror>)
