# Script behind tst_install_consumer: install, then build and run against the installed copy what
# a user builds: a console program, the getting-started example, and Qt Designer's view of the
# plugin.
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
    if(NOT rc EQUAL 0)
        message(FATAL_ERROR "failed: ${ARGN}\n${out}\n${err}")
    endif()
    set(last_output "${out}" PARENT_SCOPE)
endfunction()
function(build_project name source)
    run(${CMAKE_COMMAND} -S ${source} -B ${WORK}/${name} -G Ninja -DCMAKE_PREFIX_PATH=${WORK}/prefix)
    run(${CMAKE_COMMAND} --build ${WORK}/${name})
endfunction()
function(expect what expected)
    if(NOT last_output STREQUAL "${expected}")
        message(FATAL_ERROR "unexpected output of ${what}: [${last_output}]")
    endif()
endfunction()

run(${CMAKE_COMMAND} --install ${MATTONI_BUILD} --prefix ${WORK}/prefix)

build_project(consumer ${CONSUMER_SOURCE})
run(${WORK}/consumer/consumer)
expect(consumer "'2006-07-03' 1.234,50\n")

build_project(first-window ${EXAMPLE_SOURCE})
run(${WORK}/first-window/first-window --quit)
expect(first-window "acceso: maschio, nato/a il 15/04/1985, comune H501\n")

if(DESIGNER_PLUGIN)
    file(GLOB plugin ${WORK}/prefix/lib*/qt6/plugins/designer/libmattoni_designer.so
        ${WORK}/prefix/lib/*/qt6/plugins/designer/libmattoni_designer.so)
    if(NOT plugin)
        message(FATAL_ERROR "the Qt Designer plugin was not installed under ${WORK}/prefix")
    endif()
    get_filename_component(plugins ${plugin} DIRECTORY)
    get_filename_component(plugins ${plugins} DIRECTORY)
    build_project(designer ${DESIGNER_SOURCE})
    run(${CMAKE_COMMAND} -E env QT_PLUGIN_PATH=${plugins} ${WORK}/designer/designer_check)
    expect(designer_check "mattoni::TAMAdvLed mattoni::TAnnoAccademico mattoni::TBitBtn mattoni::TClientDBGrid \
mattoni::TDBAMAdvLed mattoni::TDBEditEnh mattoni::TDBGridExt mattoni::TDBImageState mattoni::TDBReadTreeView \
mattoni::TDBStateButton mattoni::TEditEnh mattoni::TMAILSpeedButton mattoni::TMatricola mattoni::TURLSpeedButton \
mattoni::TinCalendar\n")
endif()
