# Installs the built tree into an empty prefix, builds a client project against it and runs that.
# Then imports the installed module from Python. Arguments: BUILD_DIR, SOURCE_DIR (of the tests), WORK_DIR, PYTHON.

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

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/prefix)
run(${CMAKE_COMMAND} -S ${SOURCE_DIR}/install/client -B ${WORK_DIR}/build -G Ninja
    -DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix -DCMAKE_BUILD_TYPE=Debug)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
run(${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen XDG_CONFIG_HOME=${WORK_DIR}/config
    ${WORK_DIR}/build/client ${WORK_DIR}/frames)
if(NOT output MATCHES "shot\\.####\\.exr 1-4")
    message(FATAL_ERROR "the client printed: ${output}")
endif()

file(GLOB_RECURSE module ${WORK_DIR}/prefix/_HvMirefoldCoreUI.abi3.so)
get_filename_component(folder ${module} DIRECTORY)
run(${CMAKE_COMMAND} -E env PYTHONPATH=${folder} ${PYTHON} -c
    "import ast, _HvMirefoldCoreUI as m; print(m.Halvern.UI.FileBrowser); ast.parse(open(m.__file__[:-7] + 'pyi').read())")
