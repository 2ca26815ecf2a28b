# Stands in for Apple's frameworks on a machine that is no Mac: GNUstep, and the shims for what it lacks. Defines the
# target `appkit`, which everything written in Objective-C++ links.
find_program(GNUSTEP_CONFIG gnustep-config REQUIRED)
execute_process(COMMAND ${GNUSTEP_CONFIG} --objc-flags OUTPUT_VARIABLE gnustep_flags COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${GNUSTEP_CONFIG} --gui-libs OUTPUT_VARIABLE gnustep_libraries COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(gnustep_flags UNIX_COMMAND "${gnustep_flags}")
separate_arguments(gnustep_libraries UNIX_COMMAND "${gnustep_libraries}")
# of the flags, those that the headers and the runtime need; the rest are matters of the build's own
list(FILTER gnustep_flags INCLUDE REGEX "^(-D.*|-f.*|-pthread)$")

# objc/objc.h lies among the headers of gcc, which are searched after clang's own
execute_process(COMMAND gcc -print-file-name=include OUTPUT_VARIABLE gcc_headers
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)

add_library(appkit INTERFACE)
target_compile_options(appkit INTERFACE
    $<$<COMPILE_LANGUAGE:OBJCXX>:-fobjc-runtime=gcc
    ${gnustep_flags}
    "SHELL:-idirafter ${gcc_headers}"
    "SHELL:-include ${CMAKE_CURRENT_LIST_DIR}/shims/Shims.h"
    -Wno-protocol>) # GNUstep declares optional methods of protocols as required
target_include_directories(appkit SYSTEM INTERFACE /usr/include/GNUstep)
target_include_directories(appkit INTERFACE ${CMAKE_CURRENT_LIST_DIR}/shims)
target_link_libraries(appkit INTERFACE ${gnustep_libraries})
