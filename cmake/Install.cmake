# What `cmake --install <build> --prefix P` puts under P:
#   lib/libVelkPrjFieldbridge.so*                 the control
#   include/VelkPrjFieldbridge/ctlFieldbridge.h   its header
#   lib/cmake/VelkPrjFieldbridge/                 find_package(VelkPrjFieldbridge)
#   lib/qt6/plugins/designer/                     the Designer plugin (FIELDBRIDGE_DESIGNER_PLUGIN_DIR)
#   bin/fieldbridge-host                          the host application
#   bin/fieldbridge                               the headless tool
#   share/VelkPrjFieldbridge/examples/            the sample mapping objects
# Installed programs and the plugin find the library through a relative RPATH,
# so the tree works wherever it is put.
include(CMakePackageConfigHelpers)

set(FIELDBRIDGE_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/VelkPrjFieldbridge")

function(fieldbridge_relative_rpath target from_dir)
    file(RELATIVE_PATH to_lib "/${from_dir}" "/${CMAKE_INSTALL_LIBDIR}")
    if(to_lib STREQUAL "")
        set(to_lib ".")
    endif()
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/${to_lib}")
endfunction()

install(TARGETS VelkPrjFieldbridge
    EXPORT VelkPrjFieldbridgeTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        COMPONENT runtime NAMELINK_COMPONENT development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${PROJECT_SOURCE_DIR}/include/VelkPrjFieldbridge/ctlFieldbridge.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/VelkPrjFieldbridge COMPONENT development)

install(EXPORT VelkPrjFieldbridgeTargets
    NAMESPACE VelkPrjFieldbridge::
    DESTINATION ${FIELDBRIDGE_CMAKE_DIR}
    COMPONENT development)
configure_package_config_file(
    ${PROJECT_SOURCE_DIR}/cmake/VelkPrjFieldbridgeConfig.cmake.in
    ${PROJECT_BINARY_DIR}/VelkPrjFieldbridgeConfig.cmake
    INSTALL_DESTINATION ${FIELDBRIDGE_CMAKE_DIR})
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/VelkPrjFieldbridgeConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/VelkPrjFieldbridgeConfig.cmake
    ${PROJECT_BINARY_DIR}/VelkPrjFieldbridgeConfigVersion.cmake
    DESTINATION ${FIELDBRIDGE_CMAKE_DIR}
    COMPONENT development)

if(TARGET VelkPrjFieldbridgePlugin)
    fieldbridge_relative_rpath(VelkPrjFieldbridgePlugin "${FIELDBRIDGE_DESIGNER_PLUGIN_DIR}")
    install(TARGETS VelkPrjFieldbridgePlugin
        LIBRARY DESTINATION ${FIELDBRIDGE_DESIGNER_PLUGIN_DIR} COMPONENT designer)
endif()

if(TARGET fieldbridge-host)
    fieldbridge_relative_rpath(fieldbridge-host "${CMAKE_INSTALL_BINDIR}")
    install(TARGETS fieldbridge-host RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
endif()

if(TARGET fieldbridge)
    install(TARGETS fieldbridge RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
endif()
