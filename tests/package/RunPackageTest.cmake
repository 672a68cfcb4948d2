# Installs the build tree into a scratch prefix, checks what landed there,
# builds the consumer project against the installed package only, runs it,
# and runs the installed host program, the headless tool and the Designer
# plugin test against the installed files.
#
# Variables: BUILD_DIR, PREFIX, CONSUMER_SOURCE, CONSUMER_BUILD, GENERATOR,
# BUILD_TYPE, CXX_FLAGS, EXAMPLES, PLUGIN_TEST, PLUGIN_DIR_RELATIVE.
cmake_minimum_required(VERSION 3.25)

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err)
    if(NOT result EQUAL 0)
        list(JOIN ARGN " " command)
        message(FATAL_ERROR "failed (${result}): ${command}\n${out}\n${err}")
    endif()
    set(run_output "${out}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE "${PREFIX}" "${CONSUMER_BUILD}")
run(${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${PREFIX}")

foreach(installed
        include/VelkPrjFieldbridge/ctlFieldbridge.h
        lib/cmake/VelkPrjFieldbridge/VelkPrjFieldbridgeConfig.cmake
        lib/cmake/VelkPrjFieldbridge/VelkPrjFieldbridgeConfigVersion.cmake
        lib/libVelkPrjFieldbridge.so
        bin/fieldbridge-host
        bin/fieldbridge
        share/VelkPrjFieldbridge/examples/klmno001.xml
        share/VelkPrjFieldbridge/examples/fghij100.xml)
    if(NOT EXISTS "${PREFIX}/${installed}")
        message(FATAL_ERROR "not installed: ${installed}")
    endif()
endforeach()
file(GLOB plugin "${PREFIX}/${PLUGIN_DIR_RELATIVE}/*.so")
list(LENGTH plugin plugins)
if(NOT plugins EQUAL 1)
    message(FATAL_ERROR "expected one Designer plugin in ${PREFIX}/${PLUGIN_DIR_RELATIVE}, found: ${plugin}")
endif()
# The static core is inside the library; the package must not ask for it.
file(GLOB_RECURSE stray "${PREFIX}/*fieldbridge_core*")
if(stray)
    message(FATAL_ERROR "the internal core was installed: ${stray}")
endif()

run(${CMAKE_COMMAND} -S "${CONSUMER_SOURCE}" -B "${CONSUMER_BUILD}" -G "${GENERATOR}"
    "-DCMAKE_BUILD_TYPE=${BUILD_TYPE}" "-DCMAKE_PREFIX_PATH=${PREFIX}" "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}")
run(${CMAKE_COMMAND} --build "${CONSUMER_BUILD}")
run("${CONSUMER_BUILD}/consumer" "${PREFIX}/share/VelkPrjFieldbridge/examples/klmno001.xml")
message(STATUS "consumer:\n${run_output}")

# The installed host starts from the installed tree (its RPATH finds the
# library) and renders both tabs of the installed sample.
run("${PREFIX}/bin/fieldbridge-host" --screenshot "${CONSUMER_BUILD}/screenshots"
    "${PREFIX}/share/VelkPrjFieldbridge/examples/klmno001.xml")
foreach(png mapping-object.png define-dumps.png)
    if(NOT EXISTS "${CONSUMER_BUILD}/screenshots/${png}")
        message(FATAL_ERROR "the installed host did not write ${png}")
    endif()
endforeach()

# The installed headless tool reads the installed sample: each command.
set(sample "${PREFIX}/share/VelkPrjFieldbridge/examples/klmno001.xml")
foreach(command "suggest;--top;1" "check;--format;json" "report;--format;html")
    list(GET command 0 name)
    list(SUBLIST command 1 -1 options)
    run("${PREFIX}/bin/fieldbridge" ${name} "${sample}" ${options})
    if(NOT run_output MATCHES "dumps|severity|<html")
        message(FATAL_ERROR "the installed fieldbridge ${name} printed nothing of its kind:\n${run_output}")
    endif()
endforeach()

# QUiLoader creates the control from the installed plugin.
set(ENV{FIELDBRIDGE_DESIGNER_PLUGIN_DIR} "${PREFIX}/${PLUGIN_DIR_RELATIVE}")
set(ENV{FIELDBRIDGE_EXAMPLES} "${PREFIX}/share/VelkPrjFieldbridge/examples")
run("${PLUGIN_TEST}")
message(STATUS "installed plugin:\n${run_output}")
