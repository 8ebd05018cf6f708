# If no Python was chosen, chooses the first python3 on the path that has the PyQt of COREUI_QT. The first python3 often
# has none.
if(NOT Python3_EXECUTABLE AND NOT Python3_ROOT_DIR)
    file(TO_CMAKE_PATH "$ENV{PATH}" coreui_folders)
    foreach(coreui_folder IN LISTS coreui_folders ITEMS /usr/bin)
        if(NOT Python3_EXECUTABLE AND EXISTS ${coreui_folder}/python3)
            execute_process(COMMAND ${coreui_folder}/python3 -c "import PyQt${COREUI_QT}.sip"
                RESULT_VARIABLE coreui_result OUTPUT_QUIET ERROR_QUIET)
            if(coreui_result EQUAL 0)
                set(Python3_EXECUTABLE ${coreui_folder}/python3)
            endif()
        endif()
    endforeach()
endif()
