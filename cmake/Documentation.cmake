# The target `reference` makes the reference of the public headers in docs/reference of the build folder. A
# warning is an error. The target `lupdate` makes the catalogue of the translatable texts, HvMirefoldCoreUI.ts.
find_package(Doxygen QUIET)
if(DOXYGEN_FOUND)
    set(DOXYGEN_PROJECT_NAME CoreUI)
    set(DOXYGEN_PROJECT_BRIEF "User-interface components for visual-effects applications")
    set(DOXYGEN_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/docs/reference)
    set(DOXYGEN_USE_MDFILE_AS_MAINPAGE ${PROJECT_SOURCE_DIR}/docs/reference.md)
    set(DOXYGEN_STRIP_FROM_PATH ${PROJECT_SOURCE_DIR}/src)
    set(DOXYGEN_STRIP_FROM_INC_PATH ${PROJECT_SOURCE_DIR}/src)
    # Functions without a comment are listed too.
    set(DOXYGEN_EXTRACT_ALL YES)
    set(DOXYGEN_JAVADOC_AUTOBRIEF YES)
    set(DOXYGEN_GENERATE_LATEX NO)
    set(DOXYGEN_HAVE_DOT NO)
    set(DOXYGEN_HIDE_FRIEND_COMPOUNDS YES)
    set(DOXYGEN_QUIET YES)
    set(DOXYGEN_WARN_AS_ERROR FAIL_ON_WARNINGS)
    set(DOXYGEN_MACRO_EXPANSION YES)
    set(DOXYGEN_EXPAND_ONLY_PREDEF YES)
    set(DOXYGEN_PREDEFINED HVCOREUI_EXPORT= "Q_ENUM(x)=")
    list(TRANSFORM COREUI_PUBLIC_HEADERS PREPEND ${PROJECT_SOURCE_DIR}/src/ OUTPUT_VARIABLE headers)
    doxygen_add_docs(reference ${headers} ${PROJECT_SOURCE_DIR}/docs/reference.md
        COMMENT "Making the reference in ${DOXYGEN_OUTPUT_DIRECTORY}/html")
endif()

find_program(COREUI_LUPDATE NAMES lupdate lupdate-qt5 PATHS /usr/lib/qt5/bin)
if(COREUI_LUPDATE)
    set(catalogue ${PROJECT_BINARY_DIR}/HvMirefoldCoreUI.ts)
    add_custom_target(lupdate
        COMMAND ${COREUI_LUPDATE} ${PROJECT_SOURCE_DIR}/src -no-obsolete -locations none -ts ${catalogue}
        COMMENT "Making the catalogue ${catalogue}"
        VERBATIM)
endif()
