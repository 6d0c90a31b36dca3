# How every target of this project is compiled: warnings are errors, sanitizers by option.
find_program(VYN_CCACHE ccache)
if(VYN_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${VYN_CCACHE})
endif()

add_library(VynCompile INTERFACE)
target_compile_options(VynCompile INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-qual -Werror)
if(VYN_SANITIZE)
    target_compile_options(VynCompile INTERFACE
        -fsanitize=${VYN_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(VynCompile INTERFACE -fsanitize=${VYN_SANITIZE})
endif()
