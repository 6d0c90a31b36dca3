# What `cmake --install` leaves behind: the two shared libraries and, for a process that brings the
# software chip, two static ones; their headers; the CMake package; the command with its pages.
include(CMakePackageConfigHelpers)

# Installs a library with the headers of its folder, under the name VynPacketTracer::NAME.
function(vyn_install target name exportSet folder headers)
    get_target_property(type ${target} TYPE)
    set_target_properties(${target} PROPERTIES EXPORT_NAME ${name})
    if(type STREQUAL "SHARED_LIBRARY")
        set_target_properties(${target} PROPERTIES
            VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
    endif()
    install(TARGETS ${target} EXPORT ${exportSet})
    install(DIRECTORY ${folder}/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${headers}
        FILES_MATCHING PATTERN "*.h")
endfunction()

set(packageDir ${CMAKE_INSTALL_LIBDIR}/cmake/VynPacketTracer)
vyn_install(VynPlatform Platform VynPacketTracerTargets platform VynPlatform)
vyn_install(VynPacketTracer VynPacketTracer VynPacketTracerTargets VynPacketTracer VynPacketTracer)
vyn_install(VynSdkSeam SdkSeam VynPacketTracerSoftChipTargets sdkseam sdkseam)
vyn_install(VynSoftChip SoftChip VynPacketTracerSoftChipTargets softchip softchip)
foreach(set VynPacketTracerTargets VynPacketTracerSoftChipTargets)
    install(EXPORT ${set} NAMESPACE VynPacketTracer:: DESTINATION ${packageDir})
endforeach()

configure_package_config_file(cmake/VynPacketTracerConfig.cmake.in
    ${PROJECT_BINARY_DIR}/VynPacketTracerConfig.cmake INSTALL_DESTINATION ${packageDir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VynPacketTracerConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/VynPacketTracerConfig.cmake
    ${PROJECT_BINARY_DIR}/VynPacketTracerConfigVersion.cmake
    DESTINATION ${packageDir})

if(TARGET vynpt)
    install(TARGETS vynpt)
endif()
foreach(page vynpt.1 vynpt-simulate.1)
    install(FILES docs/man/${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 OPTIONAL)
endforeach()
install(FILES docs/completion/vynpt.bash RENAME vynpt
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions OPTIONAL)
