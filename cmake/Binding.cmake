# The Python module. The generator makes it from src/python. Defines coreui_generated and coreui_conversions, which
# are parts of the shared library, and COREUI_TYPE_STUB, the installed file of types.
set(script "import os, sipbuild, PyQt${COREUI_QT} as qt, PyQt${COREUI_QT}.sip; print(os.path.join(qt.__path__[0], 'bindings'))")
execute_process(COMMAND ${Python3_EXECUTABLE} -c "${script}" RESULT_VARIABLE result
    OUTPUT_VARIABLE COREUI_PYQT_BINDINGS ERROR_VARIABLE error OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT result EQUAL 0 OR NOT EXISTS ${COREUI_PYQT_BINDINGS}/QtWidgets/QtWidgetsmod.sip)
    message(FATAL_ERROR "The Python module needs a python3 that has PyQt${COREUI_QT} with its .sip files, and sip's generator; "
        "${Python3_EXECUTABLE} has not. On Debian: apt install python3-dev "
        "python3-pyqt${COREUI_QT} python3-pyqt${COREUI_QT}.sip pyqt${COREUI_QT}-dev sip-tools. Another one is chosen with -DPython3_EXECUTABLE=/path/to/python3.\n${error}")
endif()

set(COREUI_SIP_DIR ${PROJECT_SOURCE_DIR}/src/python)
set(folder ${PROJECT_BINARY_DIR}/python)
set(generated ${folder}/generated/_HvMirefoldCoreUI)
set(COREUI_TYPE_STUB ${generated}/_HvMirefoldCoreUI.pyi)
configure_file(${COREUI_SIP_DIR}/pyproject.toml.in ${folder}/pyproject.toml @ONLY)
set(sources
    ${COREUI_SIP_DIR}/_HvMirefoldCoreUI.sip
    ${COREUI_SIP_DIR}/FileBrowser.sip
    ${COREUI_SIP_DIR}/FileInfo.sip
    ${COREUI_SIP_DIR}/FileSequenceEvaluator.sip
    ${COREUI_SIP_DIR}/StdString.sip
    ${COREUI_SIP_DIR}/StdVector.sip)
# The generator empties its output folder.
add_custom_command(
    OUTPUT ${generated}/sip_HvMirefoldCoreUIpart0.cpp ${COREUI_TYPE_STUB}
    COMMAND ${Python3_EXECUTABLE} -m sipbuild.tools.build --quiet --no-compile --concatenate 1
        --build-dir ${folder}/generated
    DEPENDS ${sources} ${folder}/pyproject.toml
    WORKING_DIRECTORY ${folder}
    COMMENT "Generating the Python binding"
    VERBATIM)

# Only the stable interface of Python 3.7.
add_library(coreui_python INTERFACE)
target_compile_definitions(coreui_python INTERFACE Py_LIMITED_API=0x03070000)
target_include_directories(coreui_python SYSTEM INTERFACE ${Python3_INCLUDE_DIRS})

# No warnings in generated code.
add_library(coreui_generated OBJECT ${generated}/sip_HvMirefoldCoreUIpart0.cpp)
set_target_properties(coreui_generated PROPERTIES AUTOMOC OFF)
target_include_directories(coreui_generated PRIVATE ${folder}/generated ${generated} ${PROJECT_SOURCE_DIR}/src)
target_compile_options(coreui_generated PRIVATE -w)
target_link_libraries(coreui_generated PRIVATE Qt${COREUI_QT}::Widgets coreui_python)

add_library(coreui_conversions OBJECT ${COREUI_SIP_DIR}/Conversions.cpp)
target_include_directories(coreui_conversions PUBLIC ${PROJECT_SOURCE_DIR}/src)
target_link_libraries(coreui_conversions PUBLIC coreui_python coreui_options)
