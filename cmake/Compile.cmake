# How every target of this project is compiled: warnings are errors, sanitizers by option.
find_program(VYN_CCACHE ccache)
if(VYN_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    # It looks into precompiled headers only when it is told that their macros are no matter.
    set(CMAKE_CXX_COMPILER_LAUNCHER
        ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${VYN_CCACHE})
endif()

add_library(VynCompile INTERFACE)
target_compile_options(VynCompile INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-qual -Werror)
# Where g++ 12 is wrong: a frame that lists itself in an object and leaves the list again is no
# dangling pointer, joining strings does not overlap, and sanitizers hide what is initialised.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(VynCompile INTERFACE -Wno-dangling-pointer -Wno-restrict)
    # Nobody is meant to replace a function of a shared library, so calls inside one need no detour,
    # and calls between them need none through a table of jumps.
    target_compile_options(VynCompile INTERFACE -fno-semantic-interposition -fno-plt)
    target_link_options(VynCompile INTERFACE -Wl,-Bsymbolic-functions)
    if(VYN_SANITIZE)
        target_compile_options(VynCompile INTERFACE -Wno-maybe-uninitialized)
    endif()
else()
    # What g++ does by itself: memory may be given back together with its size.
    target_compile_options(VynCompile INTERFACE -fsized-deallocation)
endif()
if(VYN_SANITIZE)
    target_compile_options(VynCompile INTERFACE
        -fsanitize=${VYN_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(VynCompile INTERFACE -fsanitize=${VYN_SANITIZE})
endif()
# The fuzzer sees which edges an input takes, in the libraries too; its driver is linked in fuzz/.
# Where a view leaves what it views, the standard library says so: no sanitizer knows in a mapping.
if(VYN_FUZZ)
    target_compile_options(VynCompile INTERFACE -fsanitize=fuzzer-no-link)
    target_compile_definitions(VynCompile INTERFACE _GLIBCXX_ASSERTIONS)
endif()
# Counters of lines and branches, for script/coverage. The function that writes them out is linked
# into every module, for the processes that end without leaving main (tests/coverage/WriteOut.cpp).
if(VYN_COVERAGE)
    target_compile_options(VynCompile INTERFACE --coverage -fprofile-update=atomic)
    target_link_options(VynCompile INTERFACE --coverage -Wl,--undefined=__gcov_dump)
endif()
