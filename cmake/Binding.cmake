# The Python modules, made by the binding generator from src/python: the objects of _HvMirefoldCoreUI, which go into
# the shared library, and those of the module inside the package HvMirefoldCoreUI.
set(script "import os, sipbuild, PyQt${COREUI_QT} as qt, PyQt${COREUI_QT}.sip; print(os.path.join(qt.__path__[0], 'bindings'))")
execute_process(COMMAND ${Python3_EXECUTABLE} -c "${script}" RESULT_VARIABLE result
    OUTPUT_VARIABLE COREUI_PYQT_BINDINGS ERROR_VARIABLE error OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT result EQUAL 0 OR NOT EXISTS ${COREUI_PYQT_BINDINGS}/QtWidgets/QtWidgetsmod.sip)
    message(FATAL_ERROR "The Python module needs a python3 that has PyQt${COREUI_QT} with its .sip files, and sip's generator; "
        "${Python3_EXECUTABLE} has not. On Debian: apt install python3-dev "
        "python3-pyqt${COREUI_QT} python3-pyqt${COREUI_QT}.sip pyqt${COREUI_QT}-dev sip-tools. Another one is chosen with -DPython3_EXECUTABLE=/path/to/python3.\n${error}")
endif()

set(COREUI_SIP_DIR ${PROJECT_SOURCE_DIR}/src/python)

# Only the stable interface of Python 3.7.
add_library(coreui_python INTERFACE)
target_compile_definitions(coreui_python INTERFACE Py_LIMITED_API=0x03070000)
target_include_directories(coreui_python SYSTEM INTERFACE ${Python3_INCLUDE_DIRS})

# coreui_binding(TARGET MODULE SIP_FILE...) makes the object library TARGET from MODULE.sip, which stands in the folder
# of the first SIP_FILE and is one of them. It sets TARGET_STUB to the generated file of types.
function(coreui_binding target module)
    list(GET ARGN 0 first)
    get_filename_component(COREUI_SIP_FOLDER ${first} DIRECTORY)
    set(COREUI_SIP_MODULE ${module})
    set(folder ${PROJECT_BINARY_DIR}/python/${target})
    set(generated ${folder}/generated/${module})
    configure_file(${COREUI_SIP_DIR}/pyproject.toml.in ${folder}/pyproject.toml @ONLY)
    # The generator empties its output folder.
    set(source ${generated}/sip${module}part0.cpp)
    set(stub ${generated}/${module}.pyi)
    add_custom_command(
        OUTPUT ${source} ${stub}
        COMMAND ${Python3_EXECUTABLE} -m sipbuild.tools.build --quiet --no-compile --concatenate 1
            --build-dir ${folder}/generated
        DEPENDS ${ARGN} ${folder}/pyproject.toml
        WORKING_DIRECTORY ${folder}
        COMMENT "Generating the Python binding ${module}"
        VERBATIM)
    # No warnings in generated code.
    add_library(${target} OBJECT ${source})
    set_target_properties(${target} PROPERTIES AUTOMOC OFF)
    target_include_directories(${target} PRIVATE ${folder}/generated ${generated} ${PROJECT_SOURCE_DIR}/src)
    target_compile_options(${target} PRIVATE -w)
    target_link_libraries(${target} PRIVATE Qt${COREUI_QT}::Widgets coreui_python)
    set(${target}_STUB ${stub} PARENT_SCOPE)
endfunction()

file(GLOB native_files CONFIGURE_DEPENDS ${COREUI_SIP_DIR}/*.sip)
file(GLOB package_files CONFIGURE_DEPENDS ${COREUI_SIP_DIR}/package/*.sip)
coreui_binding(coreui_generated _HvMirefoldCoreUI ${native_files})
coreui_binding(coreui_package_generated _native ${package_files} ${native_files})

add_library(coreui_conversions OBJECT ${COREUI_SIP_DIR}/Conversions.cpp)
target_include_directories(coreui_conversions PUBLIC ${PROJECT_SOURCE_DIR}/src)
target_link_libraries(coreui_conversions PUBLIC coreui_python coreui_options)
