# Makes the Debian package, unpacks it into an empty root, builds a client project against that, runs it, and imports
# the module from there. Arguments: BUILD_DIR, SOURCE_DIR (of the tests), WORK_DIR, PYTHON, QT.

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${ARGN}: ${result}\n${output}")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR}/frames)
foreach(frame 0001 0002 0004)
    file(TOUCH ${WORK_DIR}/frames/shot.${frame}.exr)
endforeach()

run(cpack --config ${BUILD_DIR}/CPackConfig.cmake -B ${WORK_DIR})
file(GLOB package ${WORK_DIR}/hvmirefold-coreui*.deb)
run(dpkg-deb --extract ${package} ${WORK_DIR}/root)
set(prefix ${WORK_DIR}/root/usr)
# Both builds can be installed together: only the files for Qt 6 have "qt6" in their names.
file(GLOB_RECURSE files LIST_DIRECTORIES false RELATIVE ${prefix} ${prefix}/*)
set(named ${files})
list(FILTER named INCLUDE REGEX "-qt6/")
if(NOT files OR (QT EQUAL 5 AND named) OR (QT EQUAL 6 AND NOT named STREQUAL files))
    message(FATAL_ERROR "the package for Qt ${QT} has the files ${files}")
endif()
run(${CMAKE_COMMAND} -S ${SOURCE_DIR}/install/client -B ${WORK_DIR}/build -G Ninja
    -DCMAKE_PREFIX_PATH=${prefix} -DGUIDE=${SOURCE_DIR}/../examples/guide)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
math(EXPR other "11 - ${QT}")
execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE_DIR}/install/client -B ${WORK_DIR}/other -G Ninja
    -DCMAKE_PREFIX_PATH=${prefix} -DCOREUI_QT=${other} RESULT_VARIABLE result OUTPUT_QUIET ERROR_VARIABLE output)
string(REGEX REPLACE "[ \n]+" " " output "${output}")
if(result EQUAL 0 OR NOT output MATCHES "built with Qt ${QT}, but this project uses Qt ${other}")
    message(FATAL_ERROR "a project with Qt ${other}: ${result}\n${output}")
endif()
run(${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen GUIDE_UNATTENDED=1 XDG_CONFIG_HOME=${WORK_DIR}/config
    ${CMAKE_COMMAND} -E chdir ${WORK_DIR}/frames ${WORK_DIR}/build/client)
if(NOT output MATCHES "/frames/shot\\.####\\.exr 1-4")
    message(FATAL_ERROR "the client printed: ${output}")
endif()
run(ldd ${WORK_DIR}/build/client)
if(NOT output MATCHES "_HvMirefoldCoreUI.abi3.so => ${prefix}/lib/")
    message(FATAL_ERROR "the client runs with another library: ${output}")
endif()

set(python_path ${prefix}/lib/HvMirefoldCoreUI-qt${QT})
if(QT EQUAL 5)
    set(python_path ${prefix}/lib/python3/dist-packages)
endif()
run(${CMAKE_COMMAND} -E env PYTHONPATH=${python_path} ${PYTHON} -c
    "import ast, _HvMirefoldCoreUI as m\nprint(m.__file__)\nast.parse(open(m.__file__[:-7] + 'pyi').read())")
if(NOT output MATCHES "${prefix}")
    message(FATAL_ERROR "another module was imported: ${output}")
endif()
