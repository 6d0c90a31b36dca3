# A layer is one folder: every source in it, and the layers below that it may see. A folder
# without sources yet is no target's business, so its layer is then an empty interface.
#
# Headers are included by the path from the project's root ("softchip/SoftChip.h"); that includes
# only go down is checked by script/check-layers.
#
# A layer with headers for others, which run it in processes of theirs, is built with all that a debugger
# can show; the others (DRIVER) with lines and functions, which takes a third less time to compile.
function(vyn_layer name)
    cmake_parse_arguments(ARG "SHARED;DRIVER" "" "USES;LIBRARIES" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
    list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")
    if(NOT sources)
        add_library(${name} INTERFACE)
        target_link_libraries(${name} INTERFACE ${ARG_USES})
        return()
    endif()
    if(ARG_SHARED)
        add_library(${name} SHARED ${sources})
    else()
        add_library(${name} STATIC ${sources})
    endif()
    target_include_directories(${name} PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    target_link_libraries(${name}
        PUBLIC ${ARG_USES} PRIVATE $<BUILD_INTERFACE:VynCompile> ${ARG_LIBRARIES})
    if(ARG_DRIVER)
        vyn_driver(${name} ${sources})
    endif()
endfunction()

# A target that others do not build upon, and its sources. Those that declare options do so once a
# process, and all that their library brings along is compiled anew in each of them, so they are
# optimised less.
function(vyn_driver target)
    target_compile_options(${target} PRIVATE $<$<CONFIG:RelWithDebInfo>:-g1>)
    foreach(source ${ARGN})
        file(STRINGS ${source} options REGEX "#include <CLI/")
        if(options)
            set_source_files_properties(${source} PROPERTIES
                COMPILE_OPTIONS $<$<CONFIG:RelWithDebInfo>:-O1>)
        endif()
    endforeach()
endfunction()
