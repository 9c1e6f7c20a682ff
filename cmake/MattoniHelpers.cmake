# Build helpers shared by the library folders, the tests, the benchmarks and the demo.

set(MATTONI_GUI_RUNNER ${CMAKE_CURRENT_LIST_DIR}/run-on-xvfb.sh CACHE INTERNAL "")
set(MATTONI_SANITIZER_DIR ${PROJECT_SOURCE_DIR}/tests/sanitizers CACHE INTERNAL "")

# mattoni_units(<CORE|WIDGETS> UNITS name... [PRIVATE files...] [RESOURCES files...])
# Adds each unit (name.h + name.cpp) of the calling folder to one library, puts the folder on
# the include path and installs the public headers flat under include/mattoni.
function(mattoni_units lib)
    cmake_parse_arguments(U "" "" "UNITS;PRIVATE;RESOURCES;HEADERS" ${ARGN})
    if(lib STREQUAL "CORE")
        set(target mattoni_core)
    elseif(lib STREQUAL "WIDGETS")
        set(target mattoni_widgets)
    else()
        message(FATAL_ERROR "mattoni_units: CORE or WIDGETS expected, got ${lib}")
    endif()
    set(headers ${U_HEADERS})
    foreach(unit IN LISTS U_UNITS)
        target_sources(${target} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/${unit}.h ${CMAKE_CURRENT_SOURCE_DIR}/${unit}.cpp)
        list(APPEND headers ${CMAKE_CURRENT_SOURCE_DIR}/${unit}.h)
    endforeach()
    foreach(f IN LISTS U_PRIVATE U_RESOURCES U_HEADERS)
        target_sources(${target} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/${f})
    endforeach()
    target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}>)
    if(headers)
        install(FILES ${headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/mattoni)
    endif()
endfunction()

# Qt Test without its per-directory QT_TESTCASE_* definitions, so that every test and benchmark
# compiles with the same definitions and can share one precompiled header. (Tests find their data
# through the MATTONI_SOURCE_DIR environment variable instead.)
function(_mattoni_link_qt target)
    target_link_libraries(${target} PRIVATE Qt6::Core Qt6::Gui Qt6::Widgets Qt6::Sql $<LINK_ONLY:Qt6::Test>)
    target_include_directories(${target} PRIVATE $<TARGET_PROPERTY:Qt6::Test,INTERFACE_INCLUDE_DIRECTORIES>)
    target_compile_definitions(${target} PRIVATE QT_TESTLIB_LIB)
endfunction()

# One precompiled header shared by every test and benchmark executable.
function(_mattoni_test_pch)
    if(NOT TARGET mattoni_test_pch)
        file(WRITE ${CMAKE_BINARY_DIR}/mattoni_test_pch.cpp "// precompiled header carrier\n")
        add_library(mattoni_test_pch OBJECT ${CMAKE_BINARY_DIR}/mattoni_test_pch.cpp)
        _mattoni_link_qt(mattoni_test_pch)
        target_precompile_headers(mattoni_test_pch PRIVATE
            <QtCore/QtCore> <QtGui/QtGui> <QtWidgets/QtWidgets> <QtSql/QtSql> <QtTest/QtTest>)
    endif()
endfunction()

# mattoni_add_test(name [GUI] [SOURCES files...] [LIBS targets...] [TIMEOUT seconds])
# A Qt Test executable run by CTest. GUI tests get a private Xvfb display each, so that
# parallel tests never steal each other's focus; the others run on the offscreen platform.
function(mattoni_add_test name)
    cmake_parse_arguments(T "GUI" "TIMEOUT" "SOURCES;LIBS" ${ARGN})
    if(NOT T_SOURCES)
        set(T_SOURCES ${name}.cpp)
    endif()
    if(NOT T_LIBS)
        set(T_LIBS Mattoni::Core)
    endif()
    if(NOT T_TIMEOUT)
        set(T_TIMEOUT 300)
    endif()
    _mattoni_test_pch()
    add_executable(${name} ${T_SOURCES})
    target_link_libraries(${name} PRIVATE ${T_LIBS})
    _mattoni_link_qt(${name})
    target_precompile_headers(${name} REUSE_FROM mattoni_test_pch)
    if(T_GUI)
        add_test(NAME ${name} COMMAND ${MATTONI_GUI_RUNNER} $<TARGET_FILE:${name}>)
        set(platform xcb)
        set(labels gui)
        # libxkbcommon-x11 passes strndup() a counted atom name without a terminating zero, which
        # is valid C but fails ASan's strict string checks as soon as the xcb platform starts.
        set(strict_strings 0)
    else()
        add_test(NAME ${name} COMMAND ${name})
        set(platform offscreen)
        set(labels core)
        set(strict_strings 1)
    endif()
    set_tests_properties(${name} PROPERTIES
        TIMEOUT ${T_TIMEOUT}
        LABELS ${labels}
        ENVIRONMENT "QT_QPA_PLATFORM=${platform};MATTONI_SOURCE_DIR=${PROJECT_SOURCE_DIR};MATTONI_BINARY_DIR=${PROJECT_BINARY_DIR};QT_LOGGING_RULES=qt.qpa.*=false;ASAN_OPTIONS=detect_leaks=1:halt_on_error=1:detect_stack_use_after_return=1:strict_string_checks=${strict_strings};LSAN_OPTIONS=suppressions=${MATTONI_SANITIZER_DIR}/lsan.supp:print_suppressions=0;UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1:suppressions=${MATTONI_SANITIZER_DIR}/ubsan.supp")
endfunction()

# mattoni_add_bench(name [SOURCES files...] [LIBS targets...]): a benchmark program under bench/.
function(mattoni_add_bench name)
    cmake_parse_arguments(B "" "" "SOURCES;LIBS" ${ARGN})
    if(NOT B_SOURCES)
        set(B_SOURCES ${name}.cpp)
    endif()
    if(NOT B_LIBS)
        set(B_LIBS Mattoni::Core)
    endif()
    _mattoni_test_pch()
    add_executable(${name} ${B_SOURCES})
    target_link_libraries(${name} PRIVATE ${B_LIBS})
    _mattoni_link_qt(${name})
    target_precompile_headers(${name} REUSE_FROM mattoni_test_pch)
endfunction()

# mattoni_version_info(target FILE_VERSION a.b.c.d [PRODUCT_VERSION a.b.c.d]
#                      [TABLE 041004E4] [STRINGS Name=Value ...])
# Embeds a version resource in the target's executable; the program reads it back with
# TVersionResource::LoadFromRunningProgram().
function(mattoni_version_info target)
    cmake_parse_arguments(V "" "FILE_VERSION;PRODUCT_VERSION;TABLE" "STRINGS" ${ARGN})
    if(NOT V_PRODUCT_VERSION)
        set(V_PRODUCT_VERSION ${V_FILE_VERSION})
    endif()
    if(NOT V_TABLE)
        set(V_TABLE 041004E4)
    endif()
    set(desc "FileVersion=${V_FILE_VERSION}\nProductVersion=${V_PRODUCT_VERSION}\nTable=${V_TABLE}\n")
    foreach(s IN LISTS V_STRINGS)
        string(APPEND desc "String=${s}\n")
    endforeach()
    set(dir ${CMAKE_CURRENT_BINARY_DIR}/${target}_version)
    file(WRITE ${dir}/description.txt.in "${desc}")
    configure_file(${dir}/description.txt.in ${dir}/description.txt COPYONLY)
    add_custom_command(OUTPUT ${dir}/version_resource.cpp
        COMMAND ${CMAKE_COMMAND} -E env ASAN_OPTIONS=detect_leaks=0 $<TARGET_FILE:mattoni_verinfo> ${dir}/description.txt ${dir}/version_resource.cpp
        DEPENDS mattoni_verinfo ${dir}/description.txt
        COMMENT "Version resource of ${target}")
    target_sources(${target} PRIVATE ${dir}/version_resource.cpp)
    set_source_files_properties(${dir}/version_resource.cpp PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
endfunction()
